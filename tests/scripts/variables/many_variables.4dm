// Many variables live side by side.
For ($i;1;50)
  $a:=$i
  $b:=$a+1
  c:=$b+1
  <>d:=c+1
End For
ALERT(String($a+$b+c+<>d))  // expect: 206
