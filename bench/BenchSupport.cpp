#include "bench/BenchSupport.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace zrbench {

ZR_Executer& Executer() {
    static ZR_Executer* executer = [] {
        zrhost::Options options;
        options.alert = [](std::u16string_view) {};
        static std::unique_ptr<zrhost::Host> host = zrhost::Host::Start(std::move(options));
        ZR_StartupRecord record = host->startupRecord();
        FourDPackex(-1, &record, nullptr, nullptr);
        static ZR_Executer made;
        made.Create();
        return &made;
    }();
    return *executer;
}

void Program::add(std::string_view name, std::string_view code) {
    Text methodName(name), source(code);
    auto* record = reinterpret_cast<ZR_Executer_VirtualStructure*>(context_->virtualStructure.AppendGetPtr());
    record->CreateMethod(methodName.get(), methodName.get(), context_->nextVirtualReference++, 0);
    ZR_Handle blob;
    blob.Create(1, 0);
    Executer().Tokenize(source.get(), &blob, context_->GetVStructure(nullptr), nullptr, nullptr);
    context_->CreateMethod(methodName.get(), &blob);
    blob.Dispose();
}

void Program::run(std::string_view name) {
    Text methodName(name);
    zrExe_RunMethod(context_, context_->GetMethodPtrByName(methodName.get()), 0);
    if (!context_->lastError) return;
    std::fprintf(stderr, "zr_bench: line %ld: error %ld: %s\n", context_->lastErrorLine, context_->lastError,
                 context_->lastErrorText.GetCStringPtr());
    std::exit(1);
}

std::string MixedSource(size_t bytes) {
    static constexpr std::string_view kPiece =
        "// Totals of an order: lines, discount, tax.\n"
        "C_LONGINT($i;$count)\n"
        "C_REAL($total;$tax)\n"
        "C_TEXT($line;$message)\n"
        "ARRAY TEXT($names;0)\n"
        "APPEND TO ARRAY($names;\"Coffee, \\\"dark\\\"\")\n"
        "$count:=Size of array($names)\n"
        "$total:=0\n"
        "For ($i;1;$count)\n"
        "\t$line:=$names{$i}\n"
        "\tIf (($line[[1]]=\"C\") & (Length($line)>3))\n"
        "\t\t$total:=$total+(Length($line)*1.25)\n"
        "\tElse\n"
        "\t\t$message:=$message+\"Skipped: \"+Substring($line;1;20)+\"\\r\"\n"
        "\tEnd if\n"
        "End for\n"
        "\n"
        "Case of\n"
        "\t: ($total>1000)\n"
        "\t\t$tax:=$total*19/100\n"
        "\t: ($total=0)\n"
        "\t\tALERT(\"Nothing to pay on \"+String(!2024-02-29!))\n"
        "\tElse\n"
        "\t\t$tax:=0xFF%7\n"
        "End case\n"
        "<>lastTotal:=$total+$tax\n"
        "order.customer.name:=\"Ada\"\n"
        "$pointer:=->lastInvoice\n"
        "$pointer->:=Uppercase($message)\n";
    std::string source;
    source.reserve(bytes + kPiece.size());
    while (source.size() < bytes) source += kPiece;
    return source;
}

}  // namespace zrbench
