// ALERT may name its button.
ALERT("text";"Fine")  // expect: text
