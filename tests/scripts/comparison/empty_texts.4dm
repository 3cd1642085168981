// Two empty texts are equal; an empty and another text never are, not even with a wildcard.
ALERT(Choose(""="";"yes";"no"))  // expect: yes
ALERT(Choose(""="a";"yes";"no"))  // expect: no
ALERT(Choose("a"="";"yes";"no"))  // expect: no
ALERT(Choose(""="@";"yes";"no"))  // expect: no
