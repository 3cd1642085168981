// The at sign at the end of the right side stands for any continuation.
ALERT(Choose("hello"="he@";"yes";"no"))  // expect: yes
ALERT(Choose("hello"="HE@";"yes";"no"))  // expect: yes
ALERT(Choose("hello"="lo@";"yes";"no"))  // expect: no
ALERT(Choose("hello"="hello@";"yes";"no"))  // expect: yes
