// An array element does not serve as loop variable.
ARRAY LONGINT($a;3)
For ($a{1};1;3)  // error: -30 Wrong For/End For-Statement
End For
