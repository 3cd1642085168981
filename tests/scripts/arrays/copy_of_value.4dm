// COPY ARRAY takes variables only.
COPY ARRAY(1;$b)  // error: -13 Command "COPY ARRAY" wrong parameter type
