# Bars of "data", a table with a row of names and then one for each scenario, go to "chart".
set terminal svg size 1000,460 font "sans-serif,13" background "white"
set output chart
set title "Time of a record, in nanoseconds (less is better)" font ",15"
set style data histograms
set style histogram clustered gap 1.5
set style fill solid
set boxwidth 0.9
set yrange [0:*]
set ytics nomirror
set xtics nomirror scale 0
set grid ytics lc rgb "#dddddd"
set border 3 lc rgb "#666666"
set key tmargin center horizontal samplen 1.5
set bmargin 3.5  # for names of two lines
set datafile separator tab
set datafile missing "-"
set linetype 1 lc rgb "#c0392b"
set linetype 2 lc rgb "#2c5f8a"
set linetype 3 lc rgb "#7fa6c4"
set linetype 4 lc rgb "#8a8a8a"
set linetype 5 lc rgb "#c9c9c9"
plot for [column=2:columns] data using column:xticlabels(1) title columnhead lt column-1
