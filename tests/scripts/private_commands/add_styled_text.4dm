// _Add Styled Text gives 0 where nobody answers.
ALERT(String(_Add Styled Text("text")))  // expect: 0
