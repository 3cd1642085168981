// A character beyond the basic plane is two units of a text.
ALERT("😀")  // expect: 😀
ALERT(String(Length("a😀")))  // expect: 3
