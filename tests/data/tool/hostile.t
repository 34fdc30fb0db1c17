Files a person points the tool at by mistake or on purpose. Each is refused
at once, with one line naming it, before the tool parses it: the tool
admits a file as the library does (a regular file of at most 64 MB, read
as it is, never decompressed). Nothing waits on a FIFO.

  $ mkfifo pipe.xml
  $ kelprofile show pipe.xml; kelprofile lint pipe.xml; kelprofile get pipe.xml Main.Name
  pipe.xml: error: a FIFO, not a file
  pipe.xml: error: a FIFO, not a file
  1 file, 0 warnings, 1 error
  pipe.xml: error: a FIFO, not a file
  [1]
  $ mkdir f && mv pipe.xml f/ && kelprofile check f
  0 files: 0 ok, 0 failed, 0 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 0, praseDVDXMLFolder 0, praseOPtionXMLFolder 0

A compressed file named .xml is not inflated, whatever it would inflate to.

  $ printf '<Profiles><Main><Name>z</Name></Main></Profiles>' | gzip > zipped.xml
  $ kelprofile show zipped.xml; kelprofile lint zipped.xml
  zipped.xml: error: a gzip-compressed file; files are read as they are, never decompressed
  zipped.xml: error: a gzip-compressed file; files are read as they are, never decompressed
  1 file, 0 warnings, 1 error
  [1]
  $ mkdir g && cp zipped.xml g/ && kelprofile check g
  skip    g/zipped.xml: error: a gzip-compressed file; files are read as they are, never decompressed
  1 file: 0 ok, 0 failed, 1 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 0, praseDVDXMLFolder 0, praseOPtionXMLFolder 0

64 MB is the largest file read: one byte more is refused before any read.

  $ truncate -s 67108864 full.xml && kelprofile show full.xml
  full.xml:1:1: error: Document is empty
  [1]
  $ truncate -s 67108865 over.xml && kelprofile show over.xml
  over.xml: error: 67108865 bytes, larger than the 64 MB kelprofile reads
  [1]

Every command reports a file it cannot read as FILE:LINE:COLUMN: error: or
FILE: error:, as show does.

  $ printf '<Profiles><Main><Name>n</Nam></Main></Profiles>' > bad.xml
  $ kelprofile get bad.xml Main.Name; kelprofile set bad.xml Main.Name x
  bad.xml:1:30: error: Opening and ending tag mismatch: Name line 1 and Nam
  bad.xml:1:30: error: Opening and ending tag mismatch: Name line 1 and Nam
  [1]
  $ kelprofile publish bad.xml out; kelprofile dvd bad.xml out t.mpg
  bad.xml:1:30: error: Opening and ending tag mismatch: Name line 1 and Nam
  bad.xml:1:30: error: Opening and ending tag mismatch: Name line 1 and Nam
  [1]
  $ kelprofile publish examples/profiles/hd-video.xml out
  examples/profiles/hd-video.xml: error: a file of conversion profiles, not of web-player projects
  [1]
  $ kelprofile dvd examples/profiles/hd-video.xml out t.mpg
  examples/profiles/hd-video.xml: error: a file of conversion profiles, not of DVD menu template
  [1]

write takes JSON from a regular file or standard input, of at most 16 MB,
nested no deeper than a record's JSON (8 levels).

  $ kelprofile write . out.xml; kelprofile write /dev/null out.xml; kelprofile write nothing.json out.xml
  .: error: a folder, not a file
  /dev/null: error: a device, not a file
  nothing.json: error: no such file
  [1]
  $ mkfifo pipe.json && kelprofile write pipe.json out.xml
  pipe.json: error: a FIFO, not a file
  [1]
  $ truncate -s 16777217 big.json && kelprofile write big.json out.xml
  big.json: error: 16777217 bytes, larger than the 16 MB kelprofile reads
  [1]
  $ head -c 16777217 /dev/zero | kelprofile write - out.xml
  <stdin>: error: larger than the 16 MB kelprofile reads
  [1]
  $ awk 'BEGIN { for (i = 0; i < 20000; i++) printf "["; for (i = 0; i < 20000; i++) printf "]" }' > deep.json
  $ kelprofile write deep.json out.xml
  deep.json:1:9: error: nested deeper than the 8 levels of a record's JSON
  [1]

A record stops where it would pass the 32 MB one read of the library may
allocate (65,536 items of 512 bytes), and errors past the hundredth are
counted, not printed.

  $ awk -v n=65536 'BEGIN { printf "{\"family\": \"temporary options\", \"record\": {\"isSystem\": 0, \"profileName\": \"\", \"optionItem\": ["; for (i = 0; i < n; i++) printf "%s{\"name\": \"n\", \"value\": \"v\"}", (i ? "," : ""); printf "]}}" }' > fits.json
  $ kelprofile write fits.json out.xml && kelprofile show out.xml | tail -1
    value: v
  $ awk -v n=65537 'BEGIN { printf "{\"family\": \"temporary options\", \"record\": {\"isSystem\": 0, \"profileName\": \"\", \"optionItem\": ["; for (i = 0; i < n; i++) printf "%s{\"name\": \"n\", \"value\": \"v\"}", (i ? "," : ""); printf "]}}" }' > over.json
  $ kelprofile write over.json out2.xml; test -e out2.xml || echo "no out2.xml"
  over.json:1:92: error: $.record.optionItem: here the record passes the 32 MB a record read from a file may take
  no out2.xml
  $ sed 's/"n"/"x"/g; s/"name"/"nom"/g' fits.json > wrong.json && kelprofile write wrong.json out3.xml 2>&1 | sed -n '1p;$p'
  wrong.json:1:93: error: $.record.optionItem[0].name: missing
  wrong.json: error: 130972 more errors not shown

A folder reached through a link is read, as the library's folder loaders
read it; a link back up is entered once.

  $ mkdir -p real h && cp examples/broken/profile-lossy.xml real/ && ln -s ../real h/linked && ln -s . real/again
  $ kelprofile lint h | tail -1; kelprofile check h
  1 file, 8 warnings
  ok      h/linked/profile-lossy.xml (conversion profiles)
  1 file: 1 ok, 0 failed, 0 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 1, praseDVDXMLFolder 1, praseOPtionXMLFolder 1

A number past 32 bits reads differently on the 32-bit and the 64-bit host.

  $ printf '<Profiles><Main><Name>n</Name><Type>4294967396</Type></Main></Profiles>\n' > wide.xml
  $ kelprofile lint wide.xml
  wide.xml:1: warning: Main/Type: the number '4294967396' does not fit in 32 bits: it reads as 100 on a 64-bit host and as 2147483647 on a 32-bit one
  1 file, 1 warning
  [1]
