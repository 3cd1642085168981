// The error shows an interprocess variable with its prefix.
<>x:=1
<>x:=!2024-01-01!  // error: -10 Variable "<>x" has incorrect type!
