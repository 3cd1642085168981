#include "runtime/ZR_API_Prepared_Private.h"

bool zrExe_RunPrepared(ZR_ExecutionContext*, ZR_Executer_Stack*, ZR_ExecutionMethod*, ZR_MethodLine*, long*,
                       ZR_Executer_Token*) {
    return false;
}

void zrExe_DisposePreparedLine(ZR_PreparedLine*) {}
