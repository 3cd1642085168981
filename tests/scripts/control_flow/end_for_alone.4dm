// An End For needs its For.
ALERT("a")  // expect: a
End For  // error: -17 For expected
ALERT("b")
