// Names of commands are read in any case of letters.
Alert(uppercase("abc"))  // expect: ABC
aLERT(STRING(length("abcd")))  // expect: 4
