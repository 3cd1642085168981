// The at sign at the start of the right side stands for any beginning.
ALERT(Choose("hello"="@lo";"yes";"no"))  // expect: yes
ALERT(Choose("hello"="@he";"yes";"no"))  // expect: no
ALERT(Choose("hello"="@ell@";"yes";"no"))  // expect: yes
