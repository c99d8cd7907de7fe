#include "visa/refused_functions.h"

#include "visa/function_frame.h"

// Each row of the tables becomes a function.
#define KVX_REFUSE(name, convention, status, ...)                                                                      \
    ViStatus convention name(ViSession vi __VA_OPT__(, ) __VA_ARGS__)                                                  \
    {                                                                                                                  \
        return visa::withSession(vi, [](const visa::Session&) { return ViStatus{status}; });                           \
    }
KVX_VISA_REFUSED_FUNCTIONS(KVX_REFUSE)

#define KVX_DO_NOTHING(name, ...)                                                                                      \
    void _VI_FUNC name(ViSession, __VA_ARGS__) {}
KVX_VISA_VOID_FUNCTIONS(KVX_DO_NOTHING)
