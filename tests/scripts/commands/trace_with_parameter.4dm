// TRACE takes no parameters.
TRACE(1)  // error: -13 Command "TRACE" wrong count of parameters
