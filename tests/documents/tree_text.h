/* Trees as texts that a test can compare and a person read, and documents from literals. */
#ifndef TESTS_DOCUMENTS_TREE_TEXT_H
#define TESTS_DOCUMENTS_TREE_TEXT_H

#include "document.h"

#include <string>
#include <string_view>

/* All that a reader sets, a line per node; also checks that flags, counts and pointers agree. */
std::string tree_text(const dtf_datatree &root);

/* The tree of a document as text, or "error: " and the message. The document is called "doc" in messages. */
std::string parsed(std::string_view document, framework::document_use use);

#endif
