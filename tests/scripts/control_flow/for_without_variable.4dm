// The first parameter of a For must be a variable.
For (1;1;3)  // error: -30 Wrong For/End For-Statement
End For
