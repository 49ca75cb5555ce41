/* usage: libyang_map typed|natural xml|json YANG-FOLDER FILE: reads a native document, maps it and writes the result.
 */
#include "libyang_mapping.h"

#include <cstdio>
#include <string_view>

int main(int argc, char **argv)
{
    if (argc != 5)
        return 1;
    const LYD_FORMAT format = std::string_view(argv[2]) == "xml" ? LYD_XML : LYD_JSON;
    ly_ctx *const context = peers::make_context(argv[3]);
    lyd_node *const native = peers::parse(context, argv[4], format);
    const bool typed = std::string_view(argv[1]) == "typed";
    lyd_node *const mapped = typed ? peers::map_typed(context, native) : peers::map_natural(context, native);
    peers::expect(lyd_print_file(stdout, mapped, format, LYD_PRINT_WITHSIBLINGS));
    lyd_free_all(mapped);
    lyd_free_all(native);
    ly_ctx_destroy(context);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
