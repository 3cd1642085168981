// _HTML Encode writes characters as entities.
ALERT(_HTML Encode("<b>&</b>"))  // expect: &lt;b&gt;&amp;&lt;/b&gt;
ALERT(_HTML Encode("plain"))  // expect: plain
ALERT(_HTML Encode("\""))  // expect: &quot;
ALERT(_HTML Encode("é"))  // expect: &eacute;
ALERT(_HTML Encode("a\rb"))  // expect: a<br />b
