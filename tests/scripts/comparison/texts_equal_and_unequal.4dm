// Texts compare for equal and unequal.
ALERT(Choose("abc"="abc";"yes";"no"))  // expect: yes
ALERT(Choose("abc"="abd";"yes";"no"))  // expect: no
ALERT(Choose("abc"#"abd";"yes";"no"))  // expect: yes
ALERT(Choose("abc"#"abc";"yes";"no"))  // expect: no
ALERT(Choose("abc"="abcd";"yes";"no"))  // expect: no
