// _Get Fitting Text gives an empty text where nobody fits texts.
ALERT(String(Length(_Get Fitting Text("long text"))))  // expect: 0
