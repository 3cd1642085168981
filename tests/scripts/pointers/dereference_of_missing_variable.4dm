// A dereference needs a variable that exists.
$x:=vp->  // error: -11 Variable "vp" not found!
