<?php
$text = "";
$part = "xy";
for ($i = 1; $i <= 1000000; $i++) {
    $text .= $part . ";";
}
echo strlen($text), "\n";
