// The at sign works at any place of the right side.
ALERT(Choose("hello"="h@o";"yes";"no"))  // expect: yes
ALERT(Choose("hello"="h@x";"yes";"no"))  // expect: no
ALERT(Choose("hello"="h@l@o";"yes";"no"))  // expect: yes
