#include "api/KVX2800T.h"

// Twice: it guards itself. NOLINTNEXTLINE(readability-duplicate-include)
#include "api/KVX2800T.h"

ViStatus openAndClose();

ViStatus openAndClose()
{
    ViSession vi = VI_NULL;
    if (KVX2800T_init(const_cast<ViRsrc>("ASRL1::INSTR"), VI_TRUE, VI_FALSE, &vi) == KVX2800T_ERROR_IO)
        return KVX2800T_ERROR_IO;
    return KVX2800T_close(vi);
}
