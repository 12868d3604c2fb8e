# Lays out the tables of a manual page: the column with the longest text takes the room that the others leave, and those
# are as wide as what they hold.

/^\.TS/ {
  inside = 1
  rows = 0
  split("", longest)
  next
}

!inside { print; next }

# The row of column formats, which are made anew, and the options before it.
/^(l|lb| )+\.?$/ || /;$/ || /allbox/ { next }

/^T\{$/ { columns = 1; text = ""; ++rows; next }

/^T\}/ {
  cells[rows, columns] = text
  if (length(text) > longest[columns]) longest[columns] = length(text)
  widest = columns == 1 || longest[columns] > longest[widest] ? columns : widest
  if (/T\{$/) ++columns
  text = ""
  next
}

/^\.TE/ {
  inside = 0
  print ".TS\ntab(|);"
  for (row = 0; row < 2; ++row) {
    for (column = 1; column <= columns; ++column)
      printf "%s%s", (column > 1 ? " " : ""), (row == 0 ? "lb" : "l") (column == widest ? "x" : "")
    print row == 0 ? "" : "."
  }
  for (row = 1; row <= rows; ++row) {
    for (column = 1; column <= columns; ++column)
      printf "%s%s", (column > 1 ? "|" : ""), (column == widest ? "T{\n" cells[row, column] "\nT}" : cells[row, column])
    print ""
  }
  print
  next
}

{ text = text (text == "" ? "" : " ") $0 }
