// Four tokens before an assignment without braces are no array access.
$a:=1
$a+1+1:=5  // error: -34 Array access error
