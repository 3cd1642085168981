// ALERT needs a text.
ALERT  // error: -13 Command "ALERT" wrong count of parameters
