// APPEND TO ARRAY needs a variable that exists.
APPEND TO ARRAY(vx;1)  // error: -14 Unknown Variable "vx"
