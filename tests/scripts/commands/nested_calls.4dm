// Calls nest.
ALERT(Uppercase(Substring(Replace string("banana";"n";"m");2;4)))  // expect: AMAM
