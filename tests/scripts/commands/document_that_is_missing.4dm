// Opening a document that is not there sets OK to 0.
$h:=Open document(Temporary folder+"zr-golden-no-such-document.txt")
ALERT(String(OK))  // expect: 0
