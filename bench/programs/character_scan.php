<?php
$text = str_repeat("the quick brown fox jumps over the lazy dog. ", 33000);
$count = 0;
$length = strlen($text);
for ($i = 0; $i < $length; $i++) {
    if ($text[$i] === "o") {
        $count = $count + 1;
    }
}
echo $count, "\n";
