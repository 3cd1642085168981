// A structure before the host: table 1 is valid, and its field 100 + N is of type N. What is stored is kept in words,
// what is read is one value a type.
#ifndef ZR_TESTS_RUNTIME_FIELDHOST_H
#define ZR_TESTS_RUNTIME_FIELDHOST_H

#include "tests/runtime/RuntimeTesting.h"

namespace rt {

class FieldHost {
  public:
    FieldHost() {
        recorder.intercept = [this](int selector, EngineBlock* block) { return Serve(selector, block); };
    }
    Recorder recorder;
    std::vector<std::string> stored;  // "1 real 2.5": the field's type and the value

  private:
    bool Serve(int selector, EngineBlock* block) {
        block->fError = 0;
        if (selector == ZR_SEL_ExecuteCommand && (block->fParam3 == 999 || block->fParam3 == 1000)) {
            auto** parameters = reinterpret_cast<PA_Variable**>(block->fParam1);
            auto* result = reinterpret_cast<PA_Variable*>(block->fParam2);
            *result = PA_CreateVariable(eVK_Boolean);
            PA_SetBooleanVariable(result, PA_GetLongintVariable(parameters[0]) == 1);
        } else if (selector == ZR_SEL_FieldProperties) {
            block->fParam3 = block->fParam2 - 100;
        } else if (selector == ZR_SEL_SetField) {
            stored.push_back(std::to_string(block->fParam2 - 100) + " " +
                             Describe(*reinterpret_cast<PA_Variable*>(block->fParam3)));
        } else if (selector == ZR_SEL_GetField) {
            *reinterpret_cast<PA_Variable*>(block->fParam3) = Read(block->fParam2 - 100);
        } else {
            return false;
        }
        return true;
    }
    static PA_Variable Read(long type) {
        PA_Variable value = PA_CreateVariable(type == 0 || type == 2 ? eVK_Text : static_cast<int>(type));
        switch (type) {
            case 0:
            case 2: PA_SetStringVariable(&value, PA_CreateUnistring(Units(u"field"))); break;
            case 1: PA_SetRealVariable(&value, 2.5); break;
            case 4: PA_SetDateVariable(&value, 3, 2, 2001); break;
            case 6: PA_SetBooleanVariable(&value, true); break;
            case 8: PA_SetLongintVariable(&value, -7); break;
            case 9: PA_SetLongintVariable(&value, 70000); break;
            case 11: PA_SetTimeVariable(&value, 90); break;
            case 30: PA_SetBlobVariable(&value, "xy", 2); break;
            default: break;
        }
        return value;
    }
};

}  // namespace rt

#endif
