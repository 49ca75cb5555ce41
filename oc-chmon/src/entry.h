/*
 * How every exported function begins. These are macros so that the assertion names the exported function's own
 * signature, and each function's reports carry its own name, line and site word.
 */
#ifndef ENTRY_H
#define ENTRY_H

#include "dtf.h"
#include "dtf_report.h"

/* A null context is a programming error in every build type. */
#undef NDEBUG
#include <cassert>
#include <cstddef>

/* Answers a missing node or output tree. */
#define RETURN_INVALID_ARGUMENTS(ctx)                                                                                  \
    do {                                                                                                               \
        DTF_ERR(ctx, "Invalid arguments passed!");                                                                     \
        dtf_oc_error_path(ctx);                                                                                        \
        return FAULT_INVALID_ARGS;                                                                                     \
    } while (0)

/* Opens walkers, transformations and the hooks that trace their start. */
#define ENTER(ctx, in, out)                                                                                            \
    do {                                                                                                               \
        assert(NULL != ctx);                                                                                           \
        DTF_TRC(ctx, "Start");                                                                                         \
        if (NULL == (in) || NULL == (out)) {                                                                           \
            RETURN_INVALID_ARGUMENTS(ctx);                                                                             \
        }                                                                                                              \
    } while (0)

/* Closes a function that ENTER opened. */
#define LEAVE(ctx, result)                                                                                             \
    do {                                                                                                               \
        const faultno leave_result = (result);                                                                         \
        DTF_TRC(ctx, "End");                                                                                           \
        return leave_result;                                                                                           \
    } while (0)

/* The whole of a function that hands its arguments on untouched, and speaks only when they are incomplete. */
#define HAND_OVER(ctx, in, out, function)                                                                              \
    do {                                                                                                               \
        if (NULL != (in) && NULL != (out)) {                                                                           \
            return function(ctx, in, out);                                                                             \
        }                                                                                                              \
        assert(NULL != ctx);                                                                                           \
        RETURN_INVALID_ARGUMENTS(ctx);                                                                                 \
    } while (0)

#endif
