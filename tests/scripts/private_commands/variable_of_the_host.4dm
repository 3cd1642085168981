// Variables go to the host and come back from it.
vhosted:=5
_SET 4D VARIABLE("vhosted")
vhosted:=9
_GET 4D VARIABLE("vhosted")
ALERT(String(vhosted))  // expect: 5
