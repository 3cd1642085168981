// The name of the button is a text.
ALERT("text";5)  // error: -13 Command "ALERT" wrong parameter type
