/* Texts that cannot change: literals of the program and its libraries. */
#ifndef FRAMEWORK_CONSTANT_TEXT_H
#define FRAMEWORK_CONSTANT_TEXT_H

namespace framework {

/*
 * Whether a text lies in a part of a loaded object that cannot be written to: then its address stands for its content
 * as long as the object stays loaded.
 */
bool is_constant_text(const char *text);

} // namespace framework

#endif
