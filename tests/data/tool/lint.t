Each file of data/lint holds one problem on a known line.

  $ kelprofile lint data/lint
  data/lint/customize-number.xml:4: warning: swfTypeInfo@GenerateSWF: the number 'yes' reads as 0
  data/lint/customize-repeated.xml:4: warning: swfOption: repeated 2 times; the record keeps only one of them, not this one
  data/lint/group-heap-text.xml:4: warning: optionItem/Description: cut to fit its field: the file holds 1100 bytes, the record keeps at most 1023
  data/lint/group-stray-child.xml:3: warning: childOptionItem: not read (the reader ignores this element)
  data/lint/group-word.xml:3: warning: optionItem@displayType: 'dropdown' is not a display type word the reader knows; it reads as 0
  data/lint/menu-buttons.xml:7: warning: navbtnsInfo/btnInfo: 4 in the file, the record holds at most 3; this one and the ones after it are dropped
  data/lint/menu-count.xml:4: warning: framesBroadband: 1 frameRc here, 2 in frames (line 3); the one count both share will be 1
  data/lint/menu-cut.xml:3: warning: maskColor: cut to fit its field: the file holds 14 bytes, the record keeps at most 11
  data/lint/menu-frames.xml:16: warning: frames/frameRc: 13 in the file, the record holds at most 12; this one and the ones after it are dropped
  data/lint/menu-number.xml:4: warning: texts/textRc@x: the number '12px' reads as 12
  data/lint/product-cut.xml:4: warning: product/title: cut to fit its field: the file holds 400 bytes in GBK, the record keeps at most 255
  data/lint/product-element.xml:4: warning: product/linkURL: not read (the reader ignores this element)
  data/lint/product-repeated.xml:4: warning: product/title: repeated; the one of line 5 replaces this one
  data/lint/profile-attribute.xml:6: warning: Config/ConfigItem@hint: not read (the reader ignores this attribute)
  data/lint/profile-cut.xml:4: warning: Main/Name: cut to fit its field: the file holds 600 bytes, the record keeps 511 ('nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn...')
  data/lint/profile-gbk.xml:7: warning: Config/ConfigItem/Label: text '😀' has no GBK form; the record cannot hold it as GBK text
  data/lint/profile-hex.xml:4: warning: Main/Device: the number '0xff' reads as 0
  data/lint/profile-languages.xml:14: warning: Main/Desc: 11 in the file, the record keeps 10: this one and 0 more are dropped
  data/lint/profile-list.xml:7: warning: Config/ConfigItem/ListValue: 22 comma-separated pieces, the record keeps the first 20
  data/lint/profile-number.xml:4: warning: Main/Type: the number '12px' reads as 12
  data/lint/profile-repeated.xml:7: warning: Config/ConfigItem/DefaultValue: repeated 2 times; the record keeps only one of them, not this one
  data/lint/temp-cut.xml:3: warning: optionItem: cut to fit its field: the file holds 300 bytes, the record keeps 255 ('vvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvv...')
  data/lint/temp-element.xml:3: warning: option: not read (the reader ignores this element)
  data/lint/web-add-ons.xml:124: warning: addonsList/addonsItem: 121 in the file, the record keeps 120: this one and 0 more are dropped
  data/lint/web-type-attribute.xml:4: warning: playlist/playitem/advertitem@sound: not read (the reader ignores this attribute)
  25 files, 25 warnings
  [1]

A folder loader reads at most 512 files.

  $ mkdir options && for i in $(seq 0 512); do
  >   echo '<tempOption><optionItem name="a">1</optionItem></tempOption>' > options/$i.xml
  > done
  $ kelprofile lint options | tail -2
  options: warning: 513 .xml files below this folder; the folder loaders read at most 512 and leave the rest
  513 files, 1 warning
