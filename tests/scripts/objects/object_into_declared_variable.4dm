// A declared object variable takes an object.
C_OBJECT($o)
$o:=New object
$o.a:="set"
ALERT($o.a)  // expect: set
