/* The plug-in's way to the system database, to the records it holds, and to the names of a monitor. */
#include "entry.h"
#include "oc_chmon.h"
#include "text_size.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

/*
 * The system database's client and record libraries need not be in the process: without them the plug-in loads all the
 * same, and only look-ups in the inventory fail.
 */
#pragma weak _ostore_bind
#pragma weak ostore_item_get
#pragma weak _ostore_unbind
#pragma weak parcel_header_info
#pragma weak parcel_generic_init
#pragma weak parcel_generic_token
#pragma weak parcel_generic_free_token_allocations
#pragma weak parcel_generic_destroy
#pragma weak inet_ntoa_r

namespace {

/* ------------------------------------------------------------------------------------------------------- names -- */

/* What cannot be read of a name. */
constexpr int not_read = -1;
constexpr int booster_port = 0;
constexpr int preamplifier_port = 1;

bool scan_literal(const char *&at, const char *literal)
{
    const size_t length = std::strlen(literal);
    if (0 != std::strncmp(at, literal, length)) {
        return false;
    }
    at += length;
    return true;
}

/* Reads a decimal number as "%d" does; one that does not fit an int counts as not read. */
bool scan_number(const char *&at, int &number)
{
    char *end = NULL;
    const long value = std::strtol(at, &end, 10);
    if (end == at || value < INT_MIN || value > INT_MAX) {
        return false;
    }
    number = static_cast<int>(value);
    at = end;
    return true;
}

/* Reads "Ots0/<slot>/0/<port>" as far as it goes. */
void scan_controller_name(const char *name, int &slot, int &port)
{
    slot = not_read;
    port = not_read;
    if (scan_literal(name, "Ots0/") && scan_number(name, slot) && scan_literal(name, "/0/")) {
        (void)scan_number(name, port);
    }
}

void write_chmon_name(char *name, size_t size, int slot, int port)
{
    (void)snprintf(name, size, "0/%d-CHMON-%s", slot, booster_port == port ? "BST" : "PRE");
}

/* ----------------------------------------------------------------------------------------------------- records -- */

constexpr faultno no_parcel = 0xffffffffu;

/* A field name taken apart: its components point into `text`. */
struct field_path {
    static constexpr uint32_t max_components = 10;

    char text[value_size];
    const char *components[max_components];
    uint32_t count;
};

/* False for a name that no field can have. */
bool split_field_name(const char *function, const char *field, field_path &path)
{
    path.count = 0;
    if (NULL == field || std::strlen(field) >= sizeof path.text) {
        return false;
    }
    (void)dtf_strcpy_s(function, path.text, sizeof path.text, field);
    for (char *component = std::strtok(path.text, "."); NULL != component; component = std::strtok(NULL, ".")) {
        if (field_path::max_components == path.count) {
            return false;
        }
        path.components[path.count++] = component;
    }
    return 0 != path.count;
}

/* Reads and traces as the search does; on success the token is the caller's to release. */
faultno next_token(const char *function, dtf_map_ctx ctx, parcel_walk_td &tokens, parcel_token_td &token)
{
    const faultno rc = parcel_generic_token(&tokens, &token);
    if (FAULT_SUCCESS != rc) {
        DTF_TRC_AS(function, ctx, "parcel_generic_token failed: %s", fault_strerror(rc));
    }
    return rc;
}

/* Converts the first member of the wanted type in the group that the walk has just entered. */
faultno take_from_group(const char *function, dtf_map_ctx ctx, parcel_walk_td &tokens, parcel_token_type_td wanted,
                        char *output)
{
    for (bool done = false; !done;) {
        parcel_token_td member = {};
        const faultno rc = next_token(function, ctx, tokens, member);
        if (FAULT_SUCCESS != rc) {
            return rc;
        }
        if (wanted == member.type) {
            convert_parcel_value_to_str(ctx, &member, output);
            done = true;
        } else if (PARCEL_TOKEN_GROUP_END == member.type) {
            done = true;
        }
        parcel_generic_free_token_allocations(&member);
    }
    return FAULT_SUCCESS;
}

/* Walks the tokens until the field is met. Names count in order, with anything between them. */
faultno find_field(const char *function, dtf_map_ctx ctx, parcel_walk_td &tokens, const field_path &path,
                   parcel_token_type_td wanted, char *output)
{
    uint32_t matched = 0;
    faultno rc = FAULT_SUCCESS;
    for (bool done = false; !done;) {
        parcel_token_td token = {};
        rc = next_token(function, ctx, tokens, token);
        if (FAULT_SUCCESS != rc) {
            return rc;
        }
        const char *name = NULL == token.field_name ? "" : token.field_name;
        if (0 == std::strcmp(name, path.components[matched])) {
            ++matched;
        }
        if (path.count == matched) {
            if (PARCEL_TOKEN_GROUP == token.type) {
                rc = take_from_group(function, ctx, tokens, wanted, output);
            } else {
                convert_parcel_value_to_str(ctx, &token, output);
            }
            done = true;
        } else if (PARCEL_TOKEN_END == token.type) {
            done = true;
        }
        parcel_generic_free_token_allocations(&token);
    }
    return rc;
}

/* --------------------------------------------------------------------------------------------- system database -- */

/* Code of the client library's own space: the client is not there. */
constexpr faultno ostore_client_missing = 0x8081c200u;

/*
 * Whether the process can call the client library. Its file is looked for until it is found once; the answer "no" is
 * not kept, since the client may be installed later.
 */
bool ostore_client_is_present()
{
    static uint8_t present = 0;
    if (0 == present && 0 == access("/pkg/lib/libostore.so", R_OK)) {
        present = 1;
    }
    return 0 != present && NULL != _ostore_bind;
}

} // namespace

const char *const controller_chmon_ots_list[] = {
    "Ots0/1/0/0", "Ots0/1/0/1", "Ots0/2/0/0", "Ots0/2/0/1", "Ots0/3/0/0", "Ots0/3/0/1", NULL,
};

void convert_ctrl_key_to_chmon_key(const char *controller_name, char *chmon_name)
{
    char name[name_size] = {};
    (void)dtf_strcpy_s(__func__, name, sizeof name, controller_name);
    int slot = not_read;
    int port = not_read;
    scan_controller_name(name, slot, port);
    std::memset(chmon_name, 0, name_size);
    write_chmon_name(chmon_name, name_size, slot, port);
}

void convert_oc_key_to_controller_key(const char *chmon_name, char *controller_name)
{
    char name[name_size] = {};
    (void)dtf_strcpy_s(__func__, name, sizeof name, chmon_name);
    int slot = not_read;
    const char *at = name;
    if (scan_literal(at, "0/")) {
        (void)scan_number(at, slot);
    }
    const int port = NULL != std::strstr(name, "PRE") ? preamplifier_port : booster_port;
    (void)snprintf(controller_name, name_size, "Ots0/%d/0/%d", slot, port);
}

void convert_amplifier_key_to_ingress_port(const char *chmon_name, char *ingress_port)
{
    /* "0/" and a slot of one digit. */
    constexpr size_t prefix_length = 3;
    char prefix[name_size] = {};
    if (NULL != std::strstr(chmon_name, "-CHMON-")) {
        (void)dtf_strncpy_s(__func__, prefix, sizeof prefix, chmon_name, prefix_length);
    }
    const int port = NULL != std::strstr(chmon_name, "-CHMON-PRE") ? preamplifier_port : booster_port;
    /* The precision is for the compiler, which cannot see that the prefix is that short. */
    (void)snprintf(ingress_port, name_size, "%.*s-OtsCtrl-0/%d", static_cast<int>(prefix_length), prefix, port);
}

const char *replace_str(const char *text, const char *search, const char *replacement)
{
    static char result[4096];
    const char *found = std::strstr(text, search);
    if (NULL == found) {
        return text;
    }
    const size_t before = static_cast<size_t>(found - text);
    const char *rest = found + std::strlen(search);
    const size_t rest_length = std::strlen(rest);
    const size_t replacement_length = std::strlen(replacement);
    if (before + replacement_length + rest_length >= sizeof result) {
        return text;
    }
    /* The rest first, so that the text may be an earlier result. */
    std::memmove(result + before + replacement_length, rest, rest_length + 1);
    std::memmove(result, text, before);
    std::copy_n(replacement, replacement_length, result + before);
    return result;
}

int strncpy_s(char *destination, size_t size, const char *source, size_t count)
{
    if (NULL == destination || 0 == size) {
        return 1;
    }
    if (NULL == source) {
        destination[0] = '\0';
        return 1;
    }
    const size_t length = strnlen(source, count);
    const size_t fitting = length < size ? length : size - 1;
    std::memcpy(destination, source, fitting);
    destination[fitting] = '\0';
    return fitting == length ? 0 : 1;
}

faultno get_value_in_parcel(dtf_map_ctx ctx, const char *field, parcel_token_type_td wanted, const void *parcel,
                            uint32_t length, char *output)
{
    assert(NULL != ctx);
    DTF_TRC(ctx, "Start");
    field_path path;
    if (!split_field_name(__func__, field, path)) {
        return FAULT_INVALID_ARGS;
    }
    if (NULL == parcel) {
        DTF_TRC(ctx, "NULL == parcel_data");
        return no_parcel;
    }
    parcel_header_td header = {};
    faultno rc = parcel_header_info(parcel, &header);
    if (FAULT_SUCCESS != rc) {
        DTF_TRC(ctx, "parcel_header_info failed: %s", fault_strerror(rc));
        return rc;
    }
    DTF_TRC(ctx, "[parcel (len %u)] \t (%s v%d.%d)", length, header.schema, header.major, header.minor);
    parcel_walk_td tokens = {};
    rc = parcel_generic_init(parcel, length, &tokens);
    if (FAULT_SUCCESS != rc) {
        DTF_TRC(ctx, "parcel_generic_init failed: %s", fault_strerror(rc));
        return rc;
    }
    rc = find_field(__func__, ctx, tokens, path, wanted, output);
    DTF_TRC(ctx, "parcel_generic_destroy");
    parcel_generic_destroy(&tokens);
    return rc;
}

void convert_parcel_value_to_str(dtf_map_ctx ctx, const parcel_token_td *token, char *output)
{
    switch (token->type) {
    case PARCEL_TOKEN_INT8:
        (void)snprintf(output, value_size, "%d", token->value.i8);
        break;
    case PARCEL_TOKEN_UINT8:
        (void)snprintf(output, value_size, "%u", token->value.u8);
        break;
    case PARCEL_TOKEN_INT16:
        (void)snprintf(output, value_size, "%d", token->value.i16);
        break;
    case PARCEL_TOKEN_UINT16:
        (void)snprintf(output, value_size, "%u", token->value.u16);
        break;
    case PARCEL_TOKEN_INT32:
    case PARCEL_TOKEN_ENUM:
        (void)snprintf(output, value_size, "%d", token->value.i32);
        break;
    case PARCEL_TOKEN_UINT32:
        (void)snprintf(output, value_size, "%u", token->value.u32);
        break;
    case PARCEL_TOKEN_IPV4:
        (void)dtf_strcpy_s(__func__, output, value_size, inet_ntoa_r(token->value.ipv4));
        break;
    case PARCEL_TOKEN_BOOLEAN:
        (void)dtf_strcpy_s(__func__, output, value_size, 0 != token->value.boolean ? "TRUE" : "FALSE");
        break;
    case PARCEL_TOKEN_TEXT:
        (void)dtf_strcpy_s(__func__, output, value_size, token->value.text);
        break;
    case PARCEL_TOKEN_SECOND_TEXT:
        (void)dtf_strcpy_s(__func__, output, value_size, token->second_text);
        break;
    default:
        assert(NULL != ctx);
        DTF_TRC(ctx, "UNKNOWN TOKEN TYPE %d - ERROR]\n", static_cast<int>(token->type));
        break;
    }
}

void print_data(dtf_map_ctx ctx)
{
    assert(NULL != ctx);
    ctx->data_printed = 1;
    const dtf_req_ctx &state = *ctx->req_ctx;
    for (int i = 0; i < state.hierarchy_len; ++i) {
        DTF_TRC(ctx, "iteration %d", i);
        dtf_map_print_datatree_internal(ctx, state.hierarchy[i].node_data, "node_data");
    }
    dtf_map_print_datatree_internal(ctx, state.root_node, "root_node");
    dtf_map_print_datatree_internal(ctx, state.parent_node, "parent_node");
    dtf_map_print_datatree_internal(ctx, state.current_node, "current_node");
    dtf_map_print_datatree_internal(ctx, state.reg_dup_datatree, "reg_dup_datatree");
    dtf_map_print_datatree_internal(ctx, state.plist, "plist");
}

faultno ostore_get_data(dtf_map_ctx ctx, const char *bind_path, const char *item_path, void **data, uint32_t *length)
{
    assert(NULL != ctx);
    DTF_TRC(ctx, "path %s", item_path);
    void *handle = NULL;
    faultno rc = ostore_client_is_present() ? _ostore_bind(&handle, bind_path, 0) : ostore_client_missing;
    if (FAULT_SUCCESS != rc) {
        DTF_TRC(ctx, "ostore_bind failed %s", fault_strerror(rc));
        return rc;
    }
    if (NULL != handle) {
        uint32_t word = 7;
        rc = ostore_item_get(handle, item_path, &word, data, length, 0);
        if (FAULT_SUCCESS != rc) {
            DTF_TRC(ctx, "ostore_item_get failed: %s", fault_strerror(rc));
        }
        DTF_TRC(ctx, "ostore_unbind");
        _ostore_unbind(handle);
    }
    DTF_TRC(ctx, "return");
    return rc;
}

faultno ostore_get_amp_name_from_inventory(dtf_map_ctx ctx, const char *chmon_name, char *output)
{
    assert(NULL != ctx);
    DTF_TRC(ctx, "chmon_name_key %s", chmon_name);
    char item_path[item_path_size];
    (void)snprintf(item_path, sizeof item_path, "%s/attrib/inv_basic_parcel", replace_str(chmon_name, "/", "%2f"));
    void *data = NULL;
    uint32_t length = 0;
    faultno rc = ostore_get_data(ctx, "/oper/inventory/gl/entity/", item_path, &data, &length);
    if (FAULT_SUCCESS == rc) {
        rc = get_value_in_parcel(ctx, "inv_phy_entity_basic_info.Name", PARCEL_TOKEN_TEXT, data, length, output);
    } else {
        DTF_TRC(ctx, "rc != FAULT_SUCCESS");
    }
    std::free(data);
    return rc;
}

int check_controller_name_ots_is_good(dtf_map_ctx ctx, const char *controller_name)
{
    assert(NULL != ctx);
    int slot = not_read;
    int port = not_read;
    scan_controller_name(controller_name, slot, port);
    DTF_TRC(ctx, "controller_name = %s", controller_name);
    if (booster_port != port && preamplifier_port != port) {
        DTF_ERR(ctx, "Invalid controller_name [%s] and port id [%d], discard it!", controller_name, port);
        return 0;
    }
    if (slot < 0 || slot > 3) {
        DTF_ERR(ctx, "Invalid controller_name [%s] and slot id [%d], discard it!", controller_name, slot);
        return 0;
    }
    char chmon_name[value_size] = {};
    write_chmon_name(chmon_name, sizeof chmon_name, slot, port);
    char inventory_name[value_size] = {};
    if (FAULT_SUCCESS != ostore_get_amp_name_from_inventory(ctx, chmon_name, inventory_name)) {
        DTF_ERR(ctx, "Chmon_name [%s] is not present in ostore inventory, discard it!", chmon_name);
        return 0;
    }
    return 1;
}

int compare_path_and_return_data(dtf_map_ctx ctx, const struct dtf_datatree *node, const char *wanted,
                                 char *path_so_far, char *output)
{
    if (NULL == node) {
        assert(NULL != ctx);
        DTF_ERR(ctx, "return, req is NULL");
        return 0;
    }
    if (0 == (node->flags & DTF_FLAG_VALID)) {
        return 0;
    }
    if (NULL != node->tag) {
        (void)dtf_strcat_s(__func__, path_so_far, value_size, node->tag);
    }
    if (0 != (node->flags & DTF_FLAG_HAS_VALUE) && 0 == std::strcmp(path_so_far, wanted)) {
        (void)dtf_strcpy_s(__func__, output, value_size, node->value);
        return 1;
    }
    (void)dtf_strcat_s(__func__, path_so_far, value_size, "/");
    /* A count past 2^31 is as good as none. */
    const int32_t count = NULL == node->children ? 0 : static_cast<int32_t>(node->child_count);
    for (int32_t i = 0; i < count; ++i) {
        char child_path[value_size] = {};
        (void)dtf_strcpy_s(__func__, child_path, sizeof child_path, path_so_far);
        if (0 != compare_path_and_return_data(ctx, &node->children[i], wanted, child_path, output)) {
            return 1;
        }
    }
    return 0;
}
