// Slashes and other marks in a text are characters.
ALERT("a//b")  // expect: a//b
ALERT("x:=(1;2){3}[[4]]")  // expect: x:=(1;2){3}[[4]]
ALERT("!?#'@")  // expect: !?#'@
