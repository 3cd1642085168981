// The start of a For must be a number.
For ($i;"a";3)  // error: -30 Wrong For/End For-Statement
End For
