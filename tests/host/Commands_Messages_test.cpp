#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Messages = CommandTest;

TEST_F(Messages, Alert_AnyKind_IsOneLine) {
    Run(41, {"Hello"});
    Run(41, {"Hello", "Fine"});
    Run(41, {7});
    Run(41, {});
    Run(88, {"Message"});
    Run(910, {"Title", "Text"});
    EXPECT_EQ(lines, (std::vector<std::string>{"Hello", "Hello", "7", "", "Message", "Title: Text"}));
}

TEST_F(Messages, Questions_NoOneToAsk_TakeTheDefault) {
    host->setOK(false);
    Run(162, {"Sure?"});
    EXPECT_TRUE(OK());
    host->setOK(false);
    EXPECT_EQ(Text(163, {"Name?", "preset"}), "\"preset\"");
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(163, {"Name?"}), "\"\"");
    EXPECT_EQ(Text(163), "\"\"");
}

class AnsweredMessages : public CommandTest {
  protected:
    std::vector<std::string> asked;
    bool answer = true;
    void Configure(Options& options) override {
        options.confirm = [this](std::u16string_view text, std::u16string_view ok, std::u16string_view cancel) {
            asked.push_back(ToUtf8(text) + "|" + ToUtf8(ok) + "|" + ToUtf8(cancel));
            return answer;
        };
        options.request = [this](std::u16string_view, std::u16string_view preset) {
            return answer ? std::optional(std::u16string(preset) + u"!") : std::nullopt;
        };
        options.message = [this](std::u16string_view line) { asked.push_back(ToUtf8(line)); };
    }
};

TEST_F(AnsweredMessages, Questions_Answered_SetOKAndResult) {
    Run(162, {"Sure?", "Yes", "No"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(163, {"Name?", "x"}), "\"x!\"");
    EXPECT_TRUE(OK());
    answer = false;
    Run(162, {"Sure?"});
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(163, {"Name?", "x"}), "\"\"");
    EXPECT_FALSE(OK());
    Run(88, {"note"});
    EXPECT_EQ(asked, (std::vector<std::string>{"Sure?|Yes|No", "Sure?||", "note"}));
    EXPECT_TRUE(lines.empty());
}

TEST_F(Messages, Silent_Commands_LeaveNoTrace) {
    for (int id : {151, 160, 161, 175, 181}) {
        EXPECT_EQ(Text(id), "undefined") << id;
        EXPECT_EQ(error, 0) << id;
    }
    EXPECT_TRUE(lines.empty());
    EXPECT_TRUE(notServed.empty());
}

TEST_F(Messages, Pasteboard_Texts_RoundTrip) {
    Run(402);
    EXPECT_EQ(Text(524), "\"\"");
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(400, {"TEXT"}), "-102");
    Run(523, {"häl"});
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(524), "\"häl\"");
    EXPECT_TRUE(OK());
    EXPECT_EQ(Text(400, {"TEXT"}), "4");
    EXPECT_EQ(Text(400, {"com.4d.private.text.native"}), "4");
    Run(523, {});
    EXPECT_EQ(Text(524), "\"\"");
}

TEST_F(Messages, Pasteboard_Data_IsKeptByType) {
    Run(402);
    Run(403, {"one", Hex("01")});
    EXPECT_TRUE(OK());
    Run(403, {"two", Hex("0202")});
    Run(401, {"one", Arg()});
    EXPECT_EQ(ShowAfter(2), "<01>");
    EXPECT_TRUE(OK());
    Run(401, {"three", Hex("aa")});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "<>");
    Run(958, {Arg(), Arg(), Arg()});
    EXPECT_EQ(ShowAfter(2), R"(["one", "two"])");
    Run(403, {"one", "text"});
    EXPECT_FALSE(OK());
    Run(403, {});
    EXPECT_FALSE(OK());
    Run(402);
    Run(401, {"one", Arg()});
    EXPECT_FALSE(OK());
}

TEST_F(Messages, Pasteboard_FilesAndPictures_RoundTrip) {
    Run(975, {"/a/b.txt"});
    Run(975, {"c.txt", Star()});
    EXPECT_EQ(Text(976, {1}), "\"/a/b.txt\"");
    EXPECT_EQ(Text(976, {2}), "\"" + Path("c.txt") + "\"");
    EXPECT_EQ(Text(976, {3}), "\"\"");
    EXPECT_FALSE(OK());
    EXPECT_EQ(Text(976, {0}), "\"\"");
    EXPECT_EQ(Text(976), "\"\"");
    Run(975, {""});
    EXPECT_FALSE(OK());
    Run(521, {Value(NewPicture(std::vector<uint8_t>{'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0}))});
    EXPECT_TRUE(OK());
    Run(522, {Value(Ref<Picture>())});
    EXPECT_TRUE(OK());
    EXPECT_EQ(ShowAfter(1), "picture of 10");
    Run(521, {5});
    EXPECT_FALSE(OK());
    Run(522, {Value(Ref<Picture>())});
    EXPECT_FALSE(OK());
}

}  // namespace
}  // namespace zrhost::test
