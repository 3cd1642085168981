// Unequal is the contrary of equal, with wildcards as well.
ALERT(Choose("hello"#"he@";"yes";"no"))  // expect: no
ALERT(Choose("hello"#"x@";"yes";"no"))  // expect: yes
