// A picture takes pictures only.
C_PICTURE($p)
$p:=1  // error: -10 Variable "$p" has incorrect type!
