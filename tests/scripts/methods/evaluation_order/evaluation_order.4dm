// Calls with brackets run in the order of their closing brackets, those without run behind them.
$x:=show_it("a")+show_it("b")
$x:=show_it(show_it("c")+"d")
$x:=show_plain+show_it("e")
show_it("f")
// expect: a
// expect: b
// expect: c
// expect: cd
// expect: e
// expect: plain
// expect: f
