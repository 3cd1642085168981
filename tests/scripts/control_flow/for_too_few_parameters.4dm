// A For needs variable, start and end.
For ($i;1)  // error: -30 Wrong For/End For-Statement
End For
