// A host just large enough for the language tests and fuzz targets: memory, strings, variables, reference counts,
// command names, system formats, dates, times and a structure, all of which a test can set and count.
#ifndef ZR_TESTS_LANGUAGE_FAKEHOST_H
#define ZR_TESTS_LANGUAGE_FAKEHOST_H

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "plugin/ZR_API_Plugin.h"
#include "plugin/ZR_HostInterface.h"

class FakeHost {
  public:
    struct Command {
        std::u16string name;
        bool threadSafe = false;
    };
    struct Property {
        void* object;
        std::u16string key;
        int kind;
        std::u16string text;  // kind 33
    };

    long liveHandles = 0, liveStrings = 0, livePictures = 0;
    std::map<void*, long> references;                             // objects and collections: counts that were taken
    std::map<long, Command> commands;                             // by number
    std::map<long, std::u16string> formats;                       // system formats
    std::map<std::u16string, std::pair<short, short>> structure;  // reference text to table and field
    std::vector<std::u16string> evaluated;                        // what EvalDate and EvalTime were given
    std::vector<Property> properties;                             // what ObjectSetProperty was given
    bool spoilReceiver = false;                                   // command 538 leaves its receiver as a text

    static FakeHost& Get() {
        static FakeHost host;
        return host;
    }

    // A clean host of that version: English names of a few commands, "." and ",".
    static FakeHost& Start(unsigned short version = 0x1800) {
        FakeHost& host = Get();
        host = FakeHost();
        host.commands = {{1, {u"Sum", true}},         {10, {u"String", true}},
                         {41, {u"ALERT", false}},     {274, {u"Size of array", true}},
                         {283, {u"C_LONGINT", true}}, {1471, {u"New object", true}}};
        host.formats = {{0, u"."}, {1, u","}};
        ZR_StartupRecord record = {};
        record.fHostVersion = version;
        record.fCall4D = &FakeHost::Call4D;
        FourDPackex(-200, &record, nullptr, nullptr);
        return host;
    }

    // Rows of id, name, thread safety; false = no such file.
    bool LoadCommands(const std::string& path) {
        std::ifstream file(path);
        std::string line;
        std::getline(file, line);
        while (std::getline(file, line)) {
            size_t first = line.find('\t'), second = line.find('\t', first + 1);
            if (second == std::string::npos) continue;
            std::u16string name;
            for (char c : line.substr(first + 1, second - first - 1)) name += static_cast<unsigned char>(c);
            commands[std::atol(line.c_str())] = {name, line[second + 1] == '1'};
        }
        return !commands.empty();
    }

    // What a test makes itself.
    void* NewObject() {
        references[++lastObject] = 0;
        return lastObject;
    }
    PA_Picture NewPicture(const std::string& bytes) {
        livePictures++;
        return new std::string(bytes);
    }

  private:
    struct Block {
        char* data;  // *handle
        long size, locks;
    };
    char* lastObject = reinterpret_cast<char*>(0x1000);

    static void Call4D(int selector, EngineBlock* block) { Get().Serve(selector, block); }

    static std::u16string Text(const PA_Unichar* units) {
        std::u16string text;
        while (*units) text += static_cast<char16_t>(*units++);
        return text;
    }
    static std::u16string Text(const PA_Unistring& record) {
        return {reinterpret_cast<const char16_t*>(record.fString), static_cast<size_t>(record.fLength)};
    }
    template <class T>
    static T* At(int64_t address) {
        return reinterpret_cast<T*>(address);
    }

    PA_Handle NewHandle(long size) {
        Block* made = new Block{static_cast<char*>(calloc(1, size + 1)), size, 0};
        liveHandles++;
        return reinterpret_cast<PA_Handle>(made);
    }
    void DisposeHandle(PA_Handle handle) {
        if (!handle) return;
        Block* old = reinterpret_cast<Block*>(handle);
        free(old->data);
        delete old;
        liveHandles--;
    }
    void ResizeHandle(PA_Handle handle, long size) {
        Block* old = reinterpret_cast<Block*>(handle);
        old->data = static_cast<char*>(realloc(old->data, size + 1));
        if (size > old->size) memset(old->data + old->size, 0, size - old->size);
        old->size = size;
    }
    void SetString(PA_Unistring* record, const PA_Unichar* units, long length) {
        PA_Unichar* copy = static_cast<PA_Unichar*>(malloc((length + 1) * sizeof(PA_Unichar)));
        if (length > 0) memcpy(copy, units, length * sizeof(PA_Unichar));
        copy[length] = 0;
        *record = {static_cast<int32_t>(length), copy, nullptr};
        liveStrings++;
    }
    void SetString(PA_Unistring* record, const std::u16string& text) {
        SetString(record, reinterpret_cast<const PA_Unichar*>(text.data()), static_cast<long>(text.size()));
    }
    void DisposeString(PA_Unistring* record) {
        if (!record->fString) return;
        free(record->fString);
        liveStrings--;
    }
    void ClearVariable(PA_Variable* variable) {
        switch (variable->fType) {
            case eVK_Text: DisposeString(&variable->uValue.fText); break;
            case eVK_Blob:
            case eVK_ArrayLongint: DisposeHandle(variable->uValue.fArray.fData); break;
            case eVK_Picture:
                if (variable->uValue.fPicture) livePictures--;
                delete static_cast<std::string*>(variable->uValue.fPicture);
                break;
            case eVK_Object: references[variable->uValue.fObject]--; break;
            case eVK_Collection: references[variable->uValue.fCollection]--; break;
            default: break;
        }
        memset(variable, 0, sizeof *variable);
        variable->fType = eVK_Undefined;
    }

    void ServeHandle(EngineBlock* block) {
        Block* handle = reinterpret_cast<Block*>(block->fHandle);
        switch (block->fParam1) {
            case 1: block->fHandle = NewHandle(block->fParam2); break;
            case 2: DisposeHandle(block->fHandle); break;
            case 3: block->fParam2 = handle->size; break;
            case 4: ResizeHandle(block->fHandle, block->fParam2); break;
            case 5:
                handle->locks++;
                block->fParam2 = reinterpret_cast<int64_t>(handle->data);
                break;
            case 6: handle->locks--; break;
            default: break;
        }
    }
    void ServeCommand(EngineBlock* block) {
        PA_Variable** parameters = At<PA_Variable*>(block->fParam1);
        PA_Variable* result = At<PA_Variable>(block->fParam2);
        if (block->fParam3 == 538 && block->fParam4 == 2) {
            Command command = Find(parameters[0]->uValue.fLongint);
            result->fType = eVK_Text;
            SetString(&result->uValue.fText, command.name);
            parameters[1]->uValue.fLongint = command.threadSafe ? 5 : 4;
            if (spoilReceiver) {
                parameters[1]->fType = eVK_Text;
                SetString(&parameters[1]->uValue.fText, u"1");
            }
        } else if (block->fParam3 == 994 && block->fParam4 == 2) {
            DisposeString(&parameters[1]->uValue.fText);
            SetString(&parameters[1]->uValue.fText, formats[parameters[0]->uValue.fLongint]);
        } else {
            block->fError = ZR_ERR_UNKNOWN_COMMAND;
        }
    }
    Command Find(long number) {
        auto found = commands.find(number);
        return found == commands.end() ? Command() : found->second;
    }
    void ServePictureData(EngineBlock* block) {
        std::string* picture = At<std::string>(block->fParam1);
        if (!picture || block->fParam2 > 1) {
            block->fError = ZR_ERR_NO_REPRESENTATION;
            return;
        }
        if (block->fHandle) {
            ResizeHandle(block->fHandle, static_cast<long>(picture->size()));
            memcpy(*block->fHandle, picture->data(), picture->size());
        }
        SetString(At<PA_Unistring>(block->fParam3), u"image/png");
    }

    void Serve(int selector, EngineBlock* block) {
        block->fError = 0;
        switch (selector) {
            case ZR_SEL_Handle: ServeHandle(block); break;
            case ZR_SEL_CreateUnistring:
                SetString(At<PA_Unistring>(block->fParam1), At<PA_Unichar>(block->fParam2), block->fLength2);
                break;
            case ZR_SEL_SetUnistring: {
                PA_Unistring old = *At<PA_Unistring>(block->fParam1);
                SetString(At<PA_Unistring>(block->fParam1), At<PA_Unichar>(block->fParam2), block->fLength2);
                DisposeString(&old);
                break;
            }
            case ZR_SEL_DisposeUnistring: DisposeString(At<PA_Unistring>(block->fParam1)); break;
            case ZR_SEL_ClearVariable: ClearVariable(At<PA_Variable>(block->fParam1)); break;
            case ZR_SEL_ResizeArray: {
                PA_Variable* array = At<PA_Variable>(block->fParam1);
                ResizeHandle(array->uValue.fArray.fData, (block->fParam2 + 1) * ZR_HostArrayElementSize(array->fType));
                array->uValue.fArray.fSize = static_cast<int32_t>(block->fParam2);
                break;
            }
            case ZR_SEL_ObjectAddRef:
            case ZR_SEL_CollectionAddRef: references[At<void>(block->fParam1)]++; break;
            case ZR_SEL_ObjectRelease:
            case ZR_SEL_CollectionRelease: references[At<void>(block->fParam1)]--; break;
            case ZR_SEL_ObjectSetProperty: {
                PA_Variable* value = At<PA_Variable>(block->fParam3);
                properties.push_back({At<void>(block->fParam1), Text(*At<PA_Unistring>(block->fParam2)), value->fType,
                                      value->fType == eVK_Text ? Text(value->uValue.fText) : u""});
                break;
            }
            case ZR_SEL_ExecuteCommand: ServeCommand(block); break;
            case ZR_SEL_CommandName: {
                std::u16string name = Find(block->fParam1).name;
                memcpy(block->fName, name.c_str(), (name.size() + 1) * sizeof(PA_Unichar));
                break;
            }
            case ZR_SEL_EvalDate: {
                evaluated.push_back(Text(block->fName));
                std::string text;
                for (char16_t unit : evaluated.back()) text += static_cast<char>(unit);
                int day = 0, month = 0, year = 0;
                bool read = std::sscanf(text.c_str(), "%5d/%5d/%5d", &day, &month, &year) == 3;
                block->fParam1 = read ? day : 0;
                block->fParam2 = read ? month : 0;
                block->fParam3 = read ? year : 0;
                break;
            }
            case ZR_SEL_EvalTime: {
                evaluated.push_back(Text(block->fName));
                std::string text;
                for (char16_t unit : evaluated.back()) text += static_cast<char>(unit);
                int hours = 0, minutes = 0, seconds = 0;
                bool read = std::sscanf(text.c_str(), "%5d:%5d:%5d", &hours, &minutes, &seconds) == 3;
                block->fParam1 = read ? hours * 3600 + minutes * 60 + seconds : 0;
                break;
            }
            case ZR_SEL_TableAndFieldNumbers: {
                auto found = structure.find(Text(block->fName));
                bool known = found != structure.end();
                block->fParam1 = known ? found->second.first : 0;
                block->fParam2 = known ? found->second.second : 0;
                break;
            }
            case ZR_SEL_CreatePicture: {
                Block* bytes = reinterpret_cast<Block*>(block->fHandle);
                block->fParam1 = reinterpret_cast<int64_t>(NewPicture(std::string(bytes->data, bytes->size)));
                break;
            }
            case ZR_SEL_DisposePicture:
                livePictures--;
                delete At<std::string>(block->fParam1);
                break;
            case ZR_SEL_GetPictureData: ServePictureData(block); break;
            default: block->fError = ZR_ERR_UNKNOWN_SELECTOR; break;
        }
    }
};

#endif
