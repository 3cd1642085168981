// The step of a For must be a number.
For ($i;1;3;"a")  // error: -30 Wrong For/End For-Statement
End For
