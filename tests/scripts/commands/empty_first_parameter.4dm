// Required: an empty parameter drops all that follow it.
ALERT(;"x")  // error: -13 Command "ALERT" wrong count of parameters
