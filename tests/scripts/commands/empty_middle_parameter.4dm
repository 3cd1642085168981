// Required: an empty parameter drops itself and what follows.
ALERT("a";;"b")  // expect: a
ALERT(Substring("hello";3;;9))  // expect: llo
