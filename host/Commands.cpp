// Running commands by number.
#include <cstring>

#include "host/CommandCall.h"
#include "host/Host_Private.h"

namespace zrhost {

void ReportNotServed(Host& host, int id) {
    if (id < 0 || id > Host::kLastCommand || host.inside().reported[size_t(id)].exchange(true)) return;
    if (host.options().notServed) host.options().notServed(id, host.command(id).name);
}

int16_t RunCommand(Host& host, int id, PA_Variable** parameters, int count, PA_Variable* result) {
    CommandCall call = {host, host.currentProcess(), id, parameters, count, result};
    CommandFunction run = FindCommand(id);
    if (!run) {
        call.notServed();
        return call.error;
    }
    try {
        run(call);
    } catch (const std::bad_alloc&) {
        call.setUndefined();
        call.setOK(false);
        call.error = ZR_ERR_MEMORY;
    } catch (...) {  // nothing that an action meets may leave the door
        call.setUndefined();
        call.setOK(false);
        call.error = ZR_ERR_PARAMETER;
    }
    return call.error;
}

}  // namespace zrhost
