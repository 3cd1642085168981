// Members of members are set and read.
$o:=New object
$o.child:=New object
$o.child.name:="inner"
$o.child.child:=New object
$o.child.child.name:="innermost"
ALERT($o.child.name)  // expect: inner
ALERT($o.child.child.name)  // expect: innermost
