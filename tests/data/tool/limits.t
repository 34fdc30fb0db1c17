Each bound of the records and of the tool, reached exactly and passed by one.
Files are made with printf: "$(printf 'x%.0s' $(seq N))" is N times x.

A fixed text field of width 256 keeps 255 bytes: UTF-8 bytes in misc, cut on
a whole character; GBK bytes in a value or a title, where 中 takes 2 (3 in
UTF-8). Digits in a text field are text, cut like any other.

  $ zh85=$(printf '中%.0s' $(seq 85)) zh127=$(printf '中%.0s' $(seq 127))
  > w='<ZorvanWebPlayerPrj>\n<misc>%s</misc>\n</ZorvanWebPlayerPrj>\n'
  > t='<tempOption>\n<optionItem name="v">%s</optionItem>\n</tempOption>\n'
  > p='<products>\n<product>\n<title>%s</title>\n</product>\n</products>\n'
  > printf "$w" "$zh85" > misc-255.xml; printf "$w" "a$zh85" > misc-256.xml
  > printf "$t" "${zh127}a" > value-255.xml; printf "$t" "${zh127}中" > value-256.xml
  > printf "$p" "${zh127}a" > title-255.xml; printf "$p" "${zh127}中" > title-256.xml
  > printf "$t" "$(printf '0%.0s' $(seq 256))" > zeros-256.xml
  > printf "$t" "$(printf '1%.0s' $(seq 256))" > ones-256.xml
  $ kelprofile lint misc-255.xml misc-256.xml value-255.xml value-256.xml title-255.xml title-256.xml \
  >   zeros-256.xml ones-256.xml
  misc-256.xml:2: warning: misc: cut to fit its field: the file holds 256 bytes, the record keeps 253 ('a中中中中中中中中中中中中...')
  value-256.xml:2: warning: optionItem: cut to fit its field: the file holds 256 bytes in GBK, the record keeps 254 ('中中中中中中中中中中中中...')
  title-256.xml:3: warning: product/title: cut to fit its field: the file holds 256 bytes in GBK, the record keeps at most 255
  zeros-256.xml:2: warning: optionItem: cut to fit its field: the file holds 256 bytes, the record keeps 255 ('0000000000000000000000000000000000000...')
  ones-256.xml:2: warning: optionItem: cut to fit its field: the file holds 256 bytes, the record keeps 255 ('1111111111111111111111111111111111111...')
  8 files, 5 warnings
  [1]
  $ kelprofile show misc-255.xml value-255.xml title-255.xml | grep -E "^(misc|  value|  title):"
  misc: 中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中
    value: 中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中a
    title: 中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中a
  $ for f in misc-255 value-255; do kelprofile show --json $f.xml | kelprofile write - out.xml && echo written; done
  written
  written
  $ kelprofile show --json misc-255.xml | sed 's/"misc": "/&a/' | kelprofile write - out.xml
  <stdin>:9:15: error: $[0].record.misc: 256 bytes; the field holds 255
  [1]
  $ kelprofile show --json value-255.xml | sed 's/a"$/中"/' | kelprofile write - out.xml
  <stdin>:11:20: error: $[0].record.optionItem[0].value: 256 bytes in GBK; the field holds 255
  [1]

A heap text keeps 1023 bytes, in a display name as in a list label.

  $ for n in 1023 1024; do
  >   printf '<Profiles>\n<Main>\n<Name>n</Name>\n<DisplayName>%s</DisplayName>\n</Main>\n<Config>\n<ConfigItem name="c" displayType="list" valueType="int">\n<ListItem>%s</ListItem>\n<ListValue>1</ListValue>\n</ConfigItem>\n</Config>\n</Profiles>\n' \
  >     "$(printf 'd%.0s' $(seq $n))" "$(printf 'l%.0s' $(seq $n))" > heap-$n.xml
  > done
  $ kelprofile lint heap-1023.xml heap-1024.xml
  heap-1024.xml:4: warning: Main/DisplayName: cut to fit its field: the file holds 1024 bytes, the record keeps 1023 ('ddddddddddddddddddddddddddddddddddddd...')
  heap-1024.xml:8: warning: Config/ConfigItem/ListItem: cut to fit its field: the file holds 1024 bytes, the record keeps 1023 ('lllllllllllllllllllllllllllllllllllll...')
  2 files, 2 warnings
  [1]
  $ kelprofile show heap-1023.xml | grep -E -c '^  displayName: d{1023}$|^    label 0: l{1023}$'
  2
  $ kelprofile show --json heap-1023.xml | kelprofile write - out.xml && echo written
  written
  $ kelprofile show --json heap-1023.xml | sed 's/"d\{1023\}/&d/; s/"l\{1023\}/&l/' | kelprofile write - out.xml
  <stdin>:12:26: error: $[0].record.language[0].displayName: 1,024 bytes in GBK; the field holds 1,023
  <stdin>:40:17: error: $[0].record.configItem[0].listEntry[0].label[0]: 1,024 bytes in GBK; the field holds 1,023
  [1]

One conversion takes at most 1023 bytes: a text whose GBK form is 1023 bytes
converts and 1024 does not (é is 2 bytes in either form). A Chinese text of
1023 GBK bytes converts on the read, but its 1534 UTF-8 bytes are past what
the writer converts back: lint says a save writes it empty, and write
refuses it.

  $ p='<Profiles>\n<Main>\n<Name>n</Name>\n<Desc>%s</Desc>\n</Main>\n</Profiles>\n'
  > printf "$p" "$(printf 'é%.0s' $(seq 511))a" > desc-1023.xml
  > printf "$p" "$(printf 'é%.0s' $(seq 512))" > desc-1024.xml
  > printf "$p" "$(printf '中%.0s' $(seq 511))a" > desc-cjk.xml
  $ kelprofile lint desc-1023.xml desc-1024.xml desc-cjk.xml
  desc-1024.xml:4: warning: Main/Desc: text of 1024 bytes in GBK, more than the 1023 a conversion takes; the record cannot hold it as GBK text (a save writes '')
  desc-cjk.xml:4: warning: Main/Desc: text of 1534 bytes, more than the 1023 a save converts back; the record holds its 1023 bytes in GBK, but a save writes ''
  3 files, 2 warnings
  [1]
  $ kelprofile show desc-cjk.xml | grep -c '^  desc: \(中\)\{511\}a$'
  1
  $ kelprofile show --json desc-cjk.xml | kelprofile write - out.xml && grep Desc out.xml
  <stdin>:13:19: error: $[0].record.language[0].desc: 1,534 bytes; a save writes GBK text back only up to 1,023 bytes of UTF-8
  [1]

Capacities: 10 languages, 20 list entries, 120 add-ons, 12 frames and 3
buttons of a template. Lint names the first item dropped; write refuses the
list that holds one too many.

  $ for n in 10 11; do
  >   printf '<Profiles>\n<Main>\n<Name>n</Name>\n%s\n</Main>\n<Config>\n<ConfigItem name="c" displayType="list" valueType="int">\n<ListItem>%s</ListItem>\n<ListValue>%s</ListValue>\n</ConfigItem>\n</Config>\n</Profiles>\n' \
  >     "$(printf '<DisplayName lang="l%d">x</DisplayName>\n' $(seq 0 $((n - 1))))" \
  >     $(seq -s, 0 $((n + 9))) $(seq -s, 0 $((n + 9))) > lang-$n.xml
  > done
  > for n in 120 121; do
  >   printf '<ZorvanWebPlayerPrj>\n<addonsList>\n%s\n</addonsList>\n</ZorvanWebPlayerPrj>\n' \
  >     "$(printf '<addonsItem href="a"/>\n%.0s' $(seq $n))" > addons-$n.xml
  > done
  > for n in 12:3 13:4; do
  >   printf '<t>\n<frames>\n%s\n</frames>\n<navbtnsInfo>\n%s\n</navbtnsInfo>\n</t>\n' \
  >     "$(printf '<frameRc x="1"/>\n%.0s' $(seq ${n%:*}))" \
  >     "$(printf '<btnInfo x="1"/>\n%.0s' $(seq ${n#*:}))" > menu-${n%:*}.xml
  > done
  $ kelprofile lint lang-10.xml lang-11.xml addons-120.xml addons-121.xml menu-12.xml menu-13.xml
  lang-11.xml:14: warning: Main/DisplayName: 11 in the file, the record keeps 10: this one and 0 more are dropped
  lang-11.xml:18: warning: Config/ConfigItem/ListItem: 21 comma-separated pieces, the record keeps the first 20
  lang-11.xml:19: warning: Config/ConfigItem/ListValue: 21 comma-separated pieces, the record keeps the first 20
  addons-121.xml:123: warning: addonsList/addonsItem: 121 in the file, the record keeps 120: this one and 0 more are dropped
  menu-13.xml:15: warning: frames/frameRc: 13 in the file, the record holds at most 12; this one and the ones after it are dropped
  menu-13.xml:21: warning: navbtnsInfo/btnInfo: 4 in the file, the record holds at most 3; this one and the ones after it are dropped
  6 files, 6 warnings
  [1]
  $ kelprofile show menu-13.xml | grep -E "^frameCount|^navbtn 2|^frame 11"
  frameCount: 12
  frame 11:
  navbtn 2:
  $ for f in lang-10 addons-120; do kelprofile show --json $f.xml | kelprofile write - out.xml && echo written; done
  written
  written
  $ kelprofile show --json lang-10.xml | sed 's/"langCount": 10/"langCount": 11/
  >   s/"language": \[/&{"lang": "l10", "displayName": "x", "desc": null, "groupDisplayName": null}, /
  >   s/"listEntry": \[/&{"value": "20", "label": []}, /' | kelprofile write - out.xml
  <stdin>:8:20: error: $[0].record.langCount: 11; the record holds at most 10
  <stdin>:9:19: error: $[0].record.language: 11 items; the record holds at most 10
  <stdin>:108:24: error: $[0].record.configItem[0].listEntry: 21 items; the record holds at most 20
  [1]
  $ kelprofile show --json addons-120.xml |
  >   sed 's/"addOnCount": 120/"addOnCount": 121/; s/"addOn": \[/&"a", /' | kelprofile write - out.xml
  <stdin>:14:21: error: $[0].record.addOnCount: 121; the record holds at most 120
  <stdin>:15:16: error: $[0].record.addOn: 121 items; the record holds at most 120
  [1]

The folder loaders read 512 files, and paths of at most 511 bytes. Menu
templates cost a parse each, which keeps 1025 files quick.

  $ mkdir many && for i in $(seq 512); do echo '<t><frames/></t>' > many/$i.xml; done
  $ kelprofile lint many | tail -1; kelprofile check many | tail -2
  512 files, 0 warnings
  512 files: 512 ok, 0 failed, 0 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 512, praseDVDXMLFolder 512, praseOPtionXMLFolder 512
  $ echo '<t><frames/></t>' > many/513.xml
  $ kelprofile lint many | tail -2; kelprofile check many | tail -2
  many: warning: 513 .xml files below this folder; the folder loaders read at most 512 and leave the rest
  513 files, 1 warning
  513 files: 513 ok, 0 failed, 0 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 512, praseDVDXMLFolder 512, praseOPtionXMLFolder 512 (they take at most 512 files)
  $ d=long/$(printf '%0249d' 0)/$(printf '%0248d' 0) && mkdir -p $d &&
  >   echo '<t><frames/></t>' > $d/abc.xml && echo '<t><frames/></t>' > $d/abcd.xml
  $ kelprofile lint long | sed 's/0\{200,\}/0.../g'
  long/0.../0.../abcd.xml: warning: a path of 512 bytes; the folder loaders leave out paths longer than 511
  2 files, 1 warning
  $ kelprofile check long | sed 's/0\{200,\}/0.../g'
  ok      long/0.../0.../abc.xml (DVD menu template; read only: the library has no writer)
  ok      long/0.../0.../abcd.xml (DVD menu template; read only: the library has no writer); its path is too long for the folder loaders
  2 files: 2 ok, 0 failed, 0 not recognised
  folder loaders (any well-formed file counts, whatever its root): praseXMLFolder 1, praseDVDXMLFolder 1, praseOPtionXMLFolder 1

A number holds 32 bits, in a family with a writer (Type, Device) as in one
the library only reads (frameRc@x); write refuses one bit more.

  $ p='<Profiles>\n<Main>\n<Name>n</Name>\n<Type>%s</Type>\n<Device>%s</Device>\n</Main>\n</Profiles>\n'
  > m='<t>\n<frames>\n<frameRc x="%s"/>\n<frameRc x="%s"/>\n</frames>\n</t>\n'
  > printf "$p" 2147483647 -2147483648 > number-in.xml; printf "$m" 2147483647 -2147483648 > frame-in.xml
  > printf "$p" 2147483648 -2147483649 > number-out.xml; printf "$m" 2147483648 -2147483649 > frame-out.xml
  $ kelprofile lint number-in.xml frame-in.xml number-out.xml frame-out.xml
  number-out.xml:4: warning: Main/Type: the number '2147483648' does not fit in 32 bits: it reads as -2147483648 on a 64-bit host and as 2147483647 on a 32-bit one
  number-out.xml:5: warning: Main/Device: the number '-2147483649' does not fit in 32 bits: it reads as 2147483647 on a 64-bit host and as -2147483648 on a 32-bit one
  frame-out.xml:3: warning: frames/frameRc@x: the number '2147483648' does not fit in 32 bits: it reads as -2147483648 on a 64-bit host and as 2147483647 on a 32-bit one
  frame-out.xml:4: warning: frames/frameRc@x: the number '-2147483649' does not fit in 32 bits: it reads as 2147483647 on a 64-bit host and as -2147483648 on a 32-bit one
  4 files, 4 warnings
  [1]
  $ kelprofile show --json number-in.xml | kelprofile write - out.xml && kelprofile show out.xml | grep -E "^(type|device):"
  type: 2147483647
  device: -2147483648
  $ kelprofile show --json number-in.xml |
  >   sed 's/-2147483648/-2147483649/; s/2147483647/2147483648/' | kelprofile write - out.xml
  <stdin>:20:15: error: $[0].record.type: 2147483648 is outside the 32 bits the field holds
  <stdin>:21:17: error: $[0].record.device: -2147483649 is outside the 32 bits the field holds
  [1]

JSON nests 8 levels at most: array, object, record, item list, item, choice
list, choice, labels. One level more is refused at its place.

  $ kelprofile show --json examples/profiles/audio-mp3.xml | kelprofile write - out.xml && echo written
  written
  $ kelprofile show --json examples/profiles/audio-mp3.xml |
  >   sed 's/"128 kbit\/s"/["128 kbit\/s"]/' | kelprofile write - out.xml
  <stdin>:40:17: error: nested deeper than the 8 levels of a record's JSON
  [1]

GBK's euro sign is the one byte 0x80: read, shown and written back as €, and
255 of them fill a 256-byte GBK field without a cut.

  $ printf '<Profiles><Main><Name>n</Name><DisplayName>价格 € 100</DisplayName></Main></Profiles>\n' > euro.xml
  $ printf '<tempOption><optionItem name="v">%s</optionItem></tempOption>\n' "$(printf '€%.0s' $(seq 255))" > euros.xml
  $ kelprofile lint euro.xml euros.xml
  2 files, 0 warnings
  $ kelprofile show euro.xml | grep displayName
    displayName: 价格 € 100
  $ kelprofile show --json euro.xml | kelprofile write - out.xml && grep DisplayName out.xml
      <DisplayName>价格 € 100</DisplayName>
  $ kelprofile show --json euros.xml | kelprofile write - out.xml && grep -c '>\(€\)\{255\}<' out.xml
  1

Lint compares to the very end of a file: the last attribute of the last
element, the last element's text one byte too long, the last element read
otherwise than it looks.

  $ printf '<tempOption>\n<optionItem name="a">1</optionItem>\n<optionItem name="b" note="x">%s</optionItem>\n</tempOption>' \
  >   "$(printf 'v%.0s' $(seq 256))" > end.xml
  $ printf '<Profiles>\n<Main><Name>n</Name></Main>\n<Config>\n<ConfigItem name="c" displayType="list" valueType="int">\n<ListValue>1,2</ListValue>\n<DefaultValue>1x</DefaultValue></ConfigItem>\n</Config>\n</Profiles>' > end-profile.xml
  $ kelprofile lint end.xml end-profile.xml
  end.xml:3: warning: optionItem@note: not read (the reader ignores this attribute)
  end.xml:3: warning: optionItem: cut to fit its field: the file holds 256 bytes, the record keeps 255 ('vvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvv...')
  end-profile.xml:6: warning: Config/ConfigItem/DefaultValue: the number '1x' reads as 1
  2 files, 3 warnings
  [1]
