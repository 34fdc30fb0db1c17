write refuses what a record could not hold as given, each at its place in
the JSON, and leaves OUT as it was.

  $ echo old > out.xml
  $ for f in data/write/*.json; do kelprofile write "$f" out.xml || echo "exit $?"; done
  data/write/customize.json:5:20: error: $.record.GenerateFLV: a whole number expected, not boolean
  data/write/customize.json:10:19: error: $.record.playOption: an object expected, not array
  exit 1
  data/write/malformed.json:3:28: error: syntax error while parsing object key - unexpected ','; expected string literal
  exit 1
  data/write/profile.json:5:13: error: $.record.name: "🎵" has no GBK form
  data/write/profile.json:6:18: error: $.record.langCount: 2, but "language" has 1 slot (a read gives 1 to 10)
  data/write/profile.json:16:16: error: $.record.extName: a control character (U+0000) XML cannot hold
  data/write/profile.json:18:13: error: $.record.type: a whole number expected, not 5.5
  data/write/profile.json:19:15: error: $.record.device: 4294967296 is outside the 32 bits the field holds
  data/write/profile.json:20:16: error: $.record.groupId: -2147483649 is outside the 32 bits the field holds
  data/write/profile.json:26:24: error: $.record.configItem[0].displayType: "20 (lis)" is not a type as show prints one
  data/write/profile.json:28:18: error: $.record.configItem[0].label: 2 items; the record holds at most 1
  data/write/profile.json:33:11: error: $.record.configItem[0].description[0]: 1,100 bytes in GBK; the field holds 1,023
  data/write/profile.json:44:19: error: $.record.configItem[0].colour: no such field here
  data/write/profile.json:46:7: error: $.record.configItem[1].group: missing
  data/write/profile.json:48:22: error: $.record.configItem[1].readyOnly: a whole number expected, not string
  data/write/profile.json:50:22: error: $.record.configItem[1].valueType: 7 is not a type code the files use
  data/write/profile.json:53:22: error: $.record.configItem[1].listEntry: a list expected, not object
  exit 1
  data/write/read-only.json:4:15: error: $[0].family: the library only reads files of this family ("DVD menu template"); it has no writer for them
  exit 1
  data/write/temp-option.json:4:17: error: $.record.isSystem: 1, but the items say 0; the file keeps only the items
  data/write/temp-option.json:5:20: error: $.record.profileName: not what the item "profileName" says; the file keeps only the items
  data/write/temp-option.json:17:18: error: $.record.optionItem[2].value: a control character (U+0007) XML cannot hold
  data/write/temp-option.json:19:7: error: $.record.optionItem[3]: an object expected, not string
  exit 1
  data/write/two-records.json:1:1: error: $: 2 records; write takes one, as show --json prints it for one file
  exit 1
  data/write/unknown-family.json:2:13: error: $.family: "subtitles" is not a family kelprofile knows; it writes "conversion profiles", "customizations", "web-player projects", "temporary options"
  data/write/unknown-family.json:4:14: error: $.comment: no such field here
  exit 1
  data/write/webplayer.json:12:19: error: $.record.addOnCount: 1, but "addOn" has 2 slots
  data/write/webplayer.json:29:11: error: $.record.playItem[0].advert[0]: missing filepath, caption, position, duration, clickurl, clicktarget, sound, fadein, fadeout, options
  data/write/webplayer.json:30:26: error: $.record.playItem[0].advert[0].videotype: 36 bytes; the field holds 31
  data/write/webplayer.json:33:22: error: $.record.playItem[0].watermark: a list expected, not null
  exit 1
  $ cat out.xml
  old
  $ kelprofile write - new.xml < data/write/profile.json > /dev/null 2>&1; test -e new.xml || echo not created
  not created
  $ kelprofile write only-one-argument
  kelprofile: write needs JSON (a file, or - for standard input) and OUT
  [2]
