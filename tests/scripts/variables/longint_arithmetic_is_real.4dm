// Arithmetic on longint variables is done in reals, and only the assignment wraps.
C_LONGINT($l)
$l:=2147483647
ALERT(Choose($l+1=2147483648;"real";"wrapped"))  // expect: real
$l:=$l+1
ALERT(String($l))  // expect: -2147483648
$l:=7
ALERT(String($l/2))  // expect: 3.5
