// A For needs parameters.
For ()  // error: -30 Wrong For/End For-Statement
End For
