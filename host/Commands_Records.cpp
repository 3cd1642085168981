// Commands by number: Records, Selection, Sets, Named Selections, Queries, Relations, Transactions. On the empty
// structure there is no record: counts are 0, tests answer as for an empty selection, and what would change something
// sets OK to 0. Transactions are counted.
#include <algorithm>

#include "host/CommandCall.h"
#include "host/Process.h"

namespace zrhost {
namespace {

// Without a record -------------------------------------------------------------------------------------------------

// 46 to 53, 58, 66, 68, 70, 110, 145, 146, 176, 177, 200, 207, 212, 225, 242, 245, 261 to 263, 277, 300, 340, 341, 349,
// 351 and their like: no table to do it on. OK 0.
void NothingDone(CommandCall& call) { call.setOK(false); }

// 83 Records in table, 76 Records in selection, 246 Selected record number, 195 Records in set: 0
void NoRecords(CommandCall& call) { call.setLongint(0); }

// 243 Record number: -1
void NoRecordNumber(CommandCall& call) { call.setLongint(-1); }

// 36 End selection, 198 Before selection: True of an empty selection
void AtTheEnd(CommandCall& call) { call.setBoolean(true); }

// 147 Locked, 273 Is in set, 314 Modified record, 362 Read only state, 668 Is new record, 669 Is record loaded: False
void NotSo(CommandCall& call) { call.setBoolean(false); }

// 260 SELECTION TO ARRAY(field; array...), 339 DISTINCT VALUES(field; array): the arrays become empty
void EmptyArrays(CommandCall& call) {
    for (int i = 1; i <= call.count; ++i)
        if (call.isArray(i)) call.resizeArray(i, 0);
}

// Relations --------------------------------------------------------------------------------------------------------

struct AutomaticRelations {
    bool one = false, many = false;
};

// 310 SET AUTOMATIC RELATIONS(one; [many])
void SetAutomaticRelations(CommandCall& call) {
    AutomaticRelations& relations = call.process.of<AutomaticRelations>();
    if (call.has(1)) relations.one = call.boolean(1);
    if (call.has(2)) relations.many = call.boolean(2);
}

// 899 GET AUTOMATIC RELATIONS(one; many)
void GetAutomaticRelations(CommandCall& call) {
    const AutomaticRelations& relations = call.process.of<AutomaticRelations>();
    call.assignBoolean(1, relations.one);
    call.assignBoolean(2, relations.many);
}

// Transactions -----------------------------------------------------------------------------------------------------

struct Transactions {
    int level = 0;
    bool suspended = false;
};

Transactions& TransactionsOf(CommandCall& call) { return call.process.of<Transactions>(); }

// 239 START TRANSACTION: one level more
void StartTransaction(CommandCall& call) {
    Transactions& transactions = TransactionsOf(call);
    const bool starts = transactions.level < 32767;
    if (starts) ++transactions.level;
    transactions.suspended = false;
    call.setOK(starts);
}

void EndTransaction(CommandCall& call, bool validated) {
    Transactions& transactions = TransactionsOf(call);
    const bool open = transactions.level > 0;
    if (open) --transactions.level;
    transactions.suspended = false;
    call.setOK(validated && open);
}

// 240 VALIDATE TRANSACTION: OK 0 outside one
void ValidateTransaction(CommandCall& call) { EndTransaction(call, /*validated*/ true); }

// 241 CANCEL TRANSACTION: OK 0
void CancelTransaction(CommandCall& call) { EndTransaction(call, /*validated*/ false); }

// 397 In transaction
void InTransaction(CommandCall& call) { call.setBoolean(TransactionsOf(call).level > 0); }

// 961 Transaction level
void TransactionLevel(CommandCall& call) { call.setLongint(TransactionsOf(call).level); }

// 1385 SUSPEND TRANSACTION
void SuspendTransaction(CommandCall& call) {
    Transactions& transactions = TransactionsOf(call);
    transactions.suspended = transactions.level > 0;
    call.setOK(transactions.suspended);
}

// 1386 RESUME TRANSACTION
void ResumeTransaction(CommandCall& call) {
    Transactions& transactions = TransactionsOf(call);
    call.setOK(transactions.suspended);
    transactions.suspended = false;
}

// 1387 Active transaction: in one that is not suspended
void ActiveTransaction(CommandCall& call) {
    const Transactions& transactions = TransactionsOf(call);
    call.setBoolean(transactions.level > 0 && !transactions.suspended);
}

constexpr CommandRow kRows[] = {
    // Tables, records, selections
    {36, AtTheEnd},
    {42, NothingDone},
    {46, NothingDone},
    {47, NothingDone},
    {48, NothingDone},
    {49, NothingDone},
    {50, NothingDone},
    {51, NothingDone},
    {52, NothingDone},
    {53, NothingDone},
    {58, NothingDone},
    {66, NothingDone},
    {68, NothingDone},
    {70, NothingDone},
    {76, NoRecords},
    {83, NoRecords},
    {110, NothingDone},
    {145, NothingDone},
    {146, NothingDone},
    {147, NotSo},
    {176, NothingDone},
    {177, NothingDone},
    {198, AtTheEnd},
    {200, NothingDone},
    {207, NothingDone},
    {212, NothingDone},
    {225, NothingDone},
    {242, NothingDone},
    {243, NoRecordNumber},
    {244, NoRecords},
    {245, NothingDone},
    {246, NoRecords},
    {260, EmptyArrays},
    {261, NothingDone},
    {262, NothingDone},
    {263, NothingDone},
    {277, NothingDone},
    {300, NothingDone},
    {314, NotSo},
    {339, EmptyArrays},
    {340, NothingDone},
    {341, NothingDone},
    {349, NothingDone},
    {351, NothingDone},
    {362, NotSo},
    {640, NothingDone},
    {644, NothingDone},
    {668, NotSo},
    {669, NotSo},
    {993, NothingDone},
    {1050, NothingDone},
    {1051, NothingDone},
    // Sets and named selections
    {116, NothingDone},
    {117, NothingDone},
    {118, NothingDone},
    {119, NothingDone},
    {120, NothingDone},
    {121, NothingDone},
    {122, NothingDone},
    {140, NothingDone},
    {195, NoRecords},
    {273, NotSo},
    {331, NothingDone},
    {332, NothingDone},
    {333, NothingDone},
    {334, NothingDone},
    {561, NothingDone},
    {600, NothingDone},
    {641, NothingDone},
    // Relations
    {310, SetAutomaticRelations},
    {899, GetAutomaticRelations},
    // Transactions
    {239, StartTransaction},
    {240, ValidateTransaction},
    {241, CancelTransaction},
    {397, InTransaction},
    {961, TransactionLevel},
    {1385, SuspendTransaction},
    {1386, ResumeTransaction},
    {1387, ActiveTransaction},
};

}  // namespace

std::span<const CommandRow> commandsRecords() { return kRows; }

}  // namespace zrhost
