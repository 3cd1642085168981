// A declared pointer is nil until it points somewhere.
C_POINTER($p)
ALERT(Choose(Is nil pointer($p);"nil";"set"))  // expect: nil
$x:=1
$p:=->$x
ALERT(Choose(Is nil pointer($p);"nil";"set"))  // expect: set
