Exit statuses: 0 ok, 1 a file failed, 2 a usage error.

  $ kelprofile --help | grep -E "kelprofile (check|write) "
    kelprofile check DIR
    kelprofile write JSON OUT
  $ kelprofile > /dev/null 2>&1; echo $?
  2
  $ kelprofile frobnicate
  kelprofile: unknown command 'frobnicate' (see kelprofile --help)
  [2]
  $ kelprofile show
  kelprofile: show needs at least one FILE or DIR
  [2]
  $ kelprofile show /nonexistent/file.xml
  /nonexistent/file.xml: error: no such file
  [1]
  $ kelprofile check /nonexistent
  /nonexistent: error: not a folder
  [1]

Errors name their place as FILE:LINE:COLUMN: error: ..., lint's findings as
  $ kelprofile show /nonexistent/file.xml; kelprofile check /nonexistent
  /nonexistent/file.xml: error: no such file
  /nonexistent: error: not a folder
  [1]

Errors name their place the way compilers do: the parser's first complaint,
where it arose, not the end of the file.

  $ printf '<Profiles>\n  <Main>\n    <Name>x</Nam>\n' > bad.xml
  $ printf '<?xml version="1.0"?>\n<foo/>\n' > unknown.xml
  $ kelprofile show bad.xml
  bad.xml:3:18: error: Opening and ending tag mismatch: Name line 3 and Nam
  [1]
  $ kelprofile show unknown.xml
  unknown.xml:2: error: root element "foo" is not one kelprofile knows; it knows "Profiles" (conversion profiles), "root" (customizations), "ZorvanWebPlayerPrj" (web-player projects), "tempOption" (temporary options), "groupOption" (option groups), "products" (product information), any root holding template elements such as "frames" (DVD menu template)
  [1]
  $ kelprofile lint bad.xml missing.xml
  bad.xml:3:18: error: Opening and ending tag mismatch: Name line 3 and Nam
  missing.xml: error: no such file
  2 files, 0 warnings, 2 errors
  [1]

get and set reach one value by its dotted path; set rewrites nothing when
the path finds no element.

  $ echo '<r><Main><Name>Video</Name></Main></r>' > v.xml
  $ kelprofile set v.xml Main.Name 'A & B' && kelprofile get v.xml Main.Name
  A & B
  $ kelprofile set v.xml Main.Nope x
  v.xml: error: no element at 'Main.Nope' (a path names one or two levels below the root, as in Main.Name)
  [1]
  $ cat v.xml
  <?xml version="1.0" encoding="UTF-8"?>
  <r><Main><Name>A &amp; B</Name></Main></r>
  $ kelprofile set v.xml Main.Name
  kelprofile: set needs FILE, PATH and VALUE
  [2]
