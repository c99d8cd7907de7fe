#include "tools/visatrace/functions.h"
#include "tools/visatrace/traced.h"

#include <cstdarg>

#define TRACE(result, name, parameters, arguments, ...)                                                                \
    result _VI_FUNC name parameters                                                                                    \
    {                                                                                                                  \
        using enum visatrace::How;                                                                                     \
        static constinit visatrace::Traced<decltype(name)> traced{#name, #name, #arguments, {__VA_ARGS__}};            \
        return traced arguments;                                                                                       \
    }

#define TRACE_VARIADIC(name, target, parameters, last, arguments, ...)                                                 \
    ViStatus _VI_FUNCC name parameters                                                                                 \
    {                                                                                                                  \
        using enum visatrace::How;                                                                                     \
        static constinit visatrace::Traced<decltype(target)> traced{#name, #target, #arguments, {__VA_ARGS__}};        \
        va_list params;                                                                                                \
        va_start(params, last);                                                                                        \
        const ViStatus status = traced arguments;                                                                      \
        va_end(params);                                                                                                \
        return status;                                                                                                 \
    }

KVX_VISATRACE_FUNCTIONS(TRACE)
KVX_VISATRACE_LIST_FUNCTIONS(TRACE)
KVX_VISATRACE_VARIADIC_FUNCTIONS(TRACE_VARIADIC)
