// A method without parameters needs no brackets, and then replaces a value of its kind.
ALERT(String(give_seven))  // expect: 7
ALERT(String(give_seven()))  // expect: 7
ALERT(String(3+give_seven))  // expect: 7
ALERT(String(3+give_seven()))  // expect: 7
ALERT(String(3+(give_seven)))  // expect: 10
ALERT(String(give_seven+3))  // expect: 10
