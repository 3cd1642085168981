// A comment behind a statement does not change it.
If (1=1)  // one
  ALERT("then")  // expect: then
Else  // two
  ALERT("else")
End If  // three
For ($i;1;1)  // four
  ALERT("for")  // expect: for
End For  // five
$i:=0  // six
While ($i<1)  // seven
  $i:=$i+1  // eight
End while  // nine
Repeat  // ten
  $i:=$i+1  // eleven
Until ($i>1)  // twelve
Case of  // thirteen
  : ($i=2)  // fourteen
    ALERT("case")  // expect: case
  Else  // fifteen
    ALERT("other")
End case  // sixteen
