// SET BLOB SIZE needs a variable that exists.
SET BLOB SIZE(vb;5)  // error: -14 Unknown Variable "vb"
