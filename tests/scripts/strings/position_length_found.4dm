// Position writes the length found into its fourth parameter.
C_LONGINT($length)
$p:=Position("ll";"hello";1;$length)
ALERT(String($p))  // expect: 3
ALERT(String($length))  // expect: 2
