/* usage: pugixml_map FILE: reads a native XML document, maps it and writes the result. */
#include "pugixml_mapping.h"

int main(int argc, char **argv)
{
    pugi::xml_document native, mapped;
    if (argc != 2 || !native.load_file(argv[1]))
        return 1;
    peers::map(native, mapped);
    pugi::xml_writer_file out(stdout);
    mapped.save(out, "  ", pugi::format_indent | pugi::format_no_declaration);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
