#include "tests/host/Commands_Test.h"

namespace zrhost::test {
namespace {

using Objects = CommandTest;

TEST_F(Objects, NewObjectAndCollection_Arguments_FillThem) {
    static const Row rows[] = {
        {1471, {}, "{}"},
        {1471, {"a", 1, "b", "x"}, R"({"a":1,"b":"x"})"},
        {1471, {"a"}, "{}"},
        {1471, {1, 2}, "{}"},
        {1472, {}, "[]"},
        {1472, {1, "x", true, Value::Null(), Json("[2]")}, R"([1,"x",true,null,[2]])"},
        {1526, {"a", 1}, R"({"a":1})"},
        {1527, {1}, "[1]"},
        {1517, {}, "null"},
    };
    EXPECT_ROWS(rows);
}

TEST_F(Objects, Storage_TwoCalls_AreOneObject) {
    const Value first = Run(1525), second = Run(1525);
    EXPECT_NE(first.object(), nullptr);
    EXPECT_EQ(first.object(), second.object());
}

TEST_F(Objects, SetGetRemove_Properties_AsDocumented) {
    const Arg object = Json(R"({"a":1,"t":"12.5","d":"2024-02-29","n":null,"o":{"x":1},"b":true})");
    Run(1220, {object, "z", "new", "a", 2});
    EXPECT_EQ(Show(object.value), R"({"a":2,"t":"12.5","d":"2024-02-29","n":null,"o":{"x":1},"b":true,"z":"new"})");
    const struct {
        Args args;
        const char* expected;
    } rows[] = {
        {{object, "a"}, "2"},
        {{object, "missing"}, "undefined"},
        {{object, "A"}, "undefined"},
        {{object, "a", 2}, "\"2\""},
        {{object, "t", 1}, "12.5"},
        {{object, "t", 9}, "12"},
        {{object, "d", 4}, "2024-02-29"},
        {{object, "b", 1}, "1"},
        {{object, "b", 2}, "\"True\""},
        {{object, "o", 38}, R"({"x":1})"},
        {{object, "o", 2}, R"("{"x":1}")"},
        {{object, "missing", 2}, "\"\""},
        {{object, "n"}, "null"},
        {{object}, "undefined"},
        {{"no object", "a"}, "undefined"},
        {{Json("[5,6]"), "1"}, "6"},
        {{Json("[5,6]"), "1", 38}, "null"},
        {{Json("[5,6]"), "x"}, "undefined"},
        {{Json("[5,6]"), "99999999999999999999"}, "undefined"},
        {{}, "undefined"},
    };
    for (const auto& row : rows) EXPECT_EQ(Text(1224, row.args), row.expected) << &row - rows;
    Run(1226, {object, "o"});
    EXPECT_EQ(Text(1231, {object, "o"}), "false");
    EXPECT_EQ(Text(1231, {object, "n"}), "true");
    EXPECT_EQ(Text(1231, {object}), "true");
    EXPECT_EQ(Text(1231, {}), "false");
    Run(1233, {object, "t"});
    EXPECT_EQ(Text(1224, {object, "t"}), "null");
    Run(1226, {});
}

TEST_F(Objects, Set_VariableWithoutObject_GetsOne) {
    Run(1220, {Arg(), "a", 1});
    EXPECT_EQ(ShowAfter(1), R"({"a":1})");
    Run(1220, {Value(Ref<Object>()), "a", 1});
    EXPECT_EQ(ShowAfter(1), R"({"a":1})");
    Run(1220, {5, "a", 1});
    EXPECT_EQ(ShowAfter(1), "5");
    Run(1233, {Arg(), "a"});
    EXPECT_EQ(ShowAfter(1), R"({"a":null})");
}

TEST_F(Objects, TypesNamesAndLists_AsDocumented) {
    const Arg object = Json(R"({"a":1,"t":"x","n":null,"o":{},"c":[],"b":true})");
    static const struct {
        const char* name;
        const char* kind;
    } kinds[] = {{"a", "1"}, {"t", "2"}, {"n", "255"}, {"o", "38"}, {"c", "42"}, {"b", "6"}, {"missing", "5"}};
    for (const auto& row : kinds) EXPECT_EQ(Text(1230, {object, row.name}), row.kind) << row.name;
    Run(1232, {object, Arg(), Arg()});
    EXPECT_EQ(ShowAfter(2), R"(["a", "t", "n", "o", "c", "b"])");
    EXPECT_EQ(ShowAfter(3), "[1, 2, 255, 38, 42, 6]");
    Run(1232, {Arg(), Texts({"old"})});
    EXPECT_EQ(ShowAfter(2), "[]");
    EXPECT_EQ(Text(1719, {object}), R"(["a","t","n","o","c","b"])");
    EXPECT_EQ(Text(1718, {object}), R"([1,"x",null,{},[],true])");
    EXPECT_EQ(Text(1720, {Json(R"({"a":1})")}), R"([{"key":"a","value":1}])");
    EXPECT_EQ(Text(1719, {}), "[]");
    EXPECT_EQ(Text(1297, {object}), "false");
    EXPECT_EQ(Text(1297, {Json("{}")}), "true");
    EXPECT_EQ(Text(1297, {}), "true");
}

TEST_F(Objects, Copy_IsDeepAndACycleEnds) {
    const Arg object = Json(R"({"a":{"x":1}})");
    const Value copy = Run(1225, {object});
    EXPECT_EQ(Show(copy), R"({"a":{"x":1}})");
    EXPECT_NE(copy.object(), object.value.object());
    EXPECT_NE(copy.object()->get(u"a").object(), object.value.object()->get(u"a").object());
    EXPECT_EQ(Text(1225, {"x"}), "undefined");
    Ref<Object> cyclic = NewObject();
    cyclic->set(u"self", Value(cyclic));
    EXPECT_EQ(Text(1225, {Value(cyclic)}), R"({"self":null})");
    EXPECT_EQ(Text(1217, {Value(cyclic)}), R"("{"self":null}")");
    cyclic->clear();
}

TEST_F(Objects, Json_StringifyAndParse_AsDocumented) {
    static const Row rows[] = {
        {1217, {Json(R"({"a":[1,"x"]})")}, R"("{"a":[1,"x"]}")"},
        {1217, {"a\"b"}, R"(""a\"b"")"},
        {1217, {1.5}, "\"1.5\""},
        {1217, {true}, "\"true\""},
        {1217, {Value::Null()}, "\"null\""},
        {1217, {}, "\"\""},
        {1228, {Longints({1, 2})}, "\"[1,2]\""},
        {1228, {Texts({"a"})}, R"("["a"]")"},
        {1228, {Booleans({true, false})}, "\"[true,false]\""},
        {1218, {R"({"a":[1,2]})"}, R"({"a":[1,2]})"},
        {1218, {"[1]"}, "[1]"},
        {1218, {"{}", 38}, "{}"},
        {1218, {"12", 9}, "12"},
        {1218, {"\"12\"", 9}, "12"},
        {1218, {"{}", Star()}, "{}"},
        {1218, {"null"}, "null"},
        {1218, {"{"}, "undefined"},
        {1218, {""}, "undefined"},
        {1218, {}, "undefined"},
    };
    EXPECT_ROWS(rows);
    Run(1218, {"{]"});
    EXPECT_FALSE(OK());
    const std::string pretty = ToUtf8(Run(1217, {Json(R"({"a":1})"), Star()}).text());
    EXPECT_NE(pretty.find('\n'), std::string::npos);
    EXPECT_EQ(Text(1218, {std::string(5000, '[')}), "undefined");
}

TEST_F(Objects, Json_ParseArray_TakesTheKindOfTheArray) {
    Run(1219, {"[1,2.5]", Arg()});
    EXPECT_EQ(ShowAfter(2), "[1, 2.5]");
    EXPECT_EQ(After(2).kind(), eVK_ArrayReal);
    Run(1219, {R"(["a","b"])", Arg()});
    EXPECT_EQ(After(2).kind(), eVK_ArrayText);
    Run(1219, {R"([{"a":1}])", Arg()});
    EXPECT_EQ(After(2).kind(), eVK_ArrayObject);
    Run(1219, {R"(["7","x",null])", Longints({9, 9, 9, 9})});
    EXPECT_EQ(ShowAfter(2), "[7, 0, 0]");
    Run(1219, {"{}", Longints({9})});
    EXPECT_FALSE(OK());
    EXPECT_EQ(ShowAfter(2), "[9]");
    Run(1219, {"[1]", 5});
    EXPECT_FALSE(OK());
}

TEST_F(Objects, Arrays_IntoObjectsAndBack_RoundTrip) {
    const Arg object = Json("{}");
    Run(1227, {object, "list", Longints({1, 2, 3})});
    EXPECT_EQ(Show(object.value), R"({"list":[1,2,3]})");
    Run(1229, {object, "list", Arg()});
    EXPECT_EQ(ShowAfter(3), "[1, 2, 3]");
    Run(1229, {object, "list", Texts({})});
    EXPECT_EQ(ShowAfter(3), R"(["1", "2", "3"])");
    Run(1229, {object, "missing", Texts({"old"})});
    EXPECT_EQ(ShowAfter(3), "[]");
    Run(1562, {Json("[1,2]"), Arg()});
    EXPECT_EQ(ShowAfter(2), "[1, 2]");
    Run(1562, {Json(R"([{"a":1,"b":"x"},{"a":2}])"), Arg(), "a", Texts({}), "b"});
    EXPECT_EQ(ShowAfter(2), "[1, 2]");
    EXPECT_EQ(ShowAfter(4), R"(["x", ""])");
    Run(1563, {Json("[9]"), Texts({"a", "b"})});
    EXPECT_EQ(ShowAfter(1), R"(["a","b"])");
    Run(1563, {Arg(), Longints({1, 2}), "n", Texts({"x"}), "t"});
    EXPECT_EQ(ShowAfter(1), R"([{"n":1,"t":"x"},{"n":2}])");
    Run(1562, {});
    Run(1563, {});
}

}  // namespace
}  // namespace zrhost::test
