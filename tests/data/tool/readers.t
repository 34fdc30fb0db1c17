What each family's reader makes of files that test its rules, shown field
by field: items in file order, the special names and which one wins,
values cut to their fields on a whole character (GBK counted in GBK), text
without a GBK form kept as the file's UTF-8 (shown as its GBK reading) or
skipped with its element, and items past a capacity dropped.

  $ kelprofile show data/options/items.xml data/options/last-wins.xml
  == data/options/items.xml (temporary options)
  isSystem: 1
  profileName: 中文
  optionItem 0:
    name: width
    value: 1280
  optionItem 1:
    name: profileName
    value: 中文
  optionItem 2:
    name: isSystem
    value: 1
  optionItem 3:
    name: 
    value: no name
  optionItem 4:
    name: face
    value: 馃榾
  == data/options/last-wins.xml (temporary options)
  isSystem: 0
  profileName: second
  optionItem 0:
    name: profileName
    value: first
  optionItem 1:
    name: isSystem
    value: 1
  optionItem 2:
    name: profileName
    value: second
  optionItem 3:
    name: profileName
    value: 
  optionItem 4:
    name: isSystem
    value: yes
  optionItem 5:
    name: ProfileName
    value: case matters
  $ kelprofile show data/options/over-long.xml
  == data/options/over-long.xml (temporary options)
  isSystem: 0
  profileName: 中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中
  optionItem 0:
    name: nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn
    value: 中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中
  optionItem 1:
    name: profileName
    value: 中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中
  optionItem 2:
    name: after
    value: x
  $ kelprofile show data/products/products.xml
  == data/products/products.xml (product information)
  product 0:
    title: 中文
    content: body
    buttonName: Buy
    linkURl: https://example.com/a
  product 1:
    title: only a title
    content: 
    buttonName: 
    linkURl: 
  $ kelprofile show data/customize/unconvertible.xml data/customize/over-long.xml
  == data/customize/unconvertible.xml (customizations)
  profileName: 
  GenerateFLV: 0
  GenerateSWF: 0
  swfType: 0
  GenerateHTML: 0
  GenerateThumbnail: 0
  playOption:
    playerSkinPath: 
    skinAutoHide: 0
    mouseAutoHide: 0
    hideDelay: 0
    r: 0
    g: 0
    b: 0
    preLoderSkinPath: pre
    effectSkinPath: 
  insertADOption 0:
    name: i
    enable: 1
    fileType: 0
    positionType: 0
    imageInfo: img
    textContent: 
    videpPath: v
    r: 0
    g: 0
    b: 0
    size: 0
    typeName: 
    textR: 0
    textG: 0
    textB: 0
    duration: 0
    startTime: 0
    fontX: 
    fontY: 
    fontHeight: 
  ADOption 0:
    name: a
    enable: 0
    fileType: 0
    imageInfo: 
    textContent: ok
    videpPath: 
    size: 5
    typeName: f
    textR: 0
    textG: 0
    textB: 0
    caption: c
    position: 0
    duration: 0
    clickURL: 
    clickTarget: 
    imageX: 
    imageY: 
    imageWidth: 
    imageHeight: 
    fontX: 
    fontY: 
    fontWidth: 6
    fontHeight: 
  == data/customize/over-long.xml (customizations)
  profileName: 中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中
  GenerateFLV: 0
  GenerateSWF: 0
  swfType: 0
  GenerateHTML: 0
  GenerateThumbnail: 0
  playOption:
    playerSkinPath: 
    skinAutoHide: 0
    mouseAutoHide: 0
    hideDelay: 0
    r: 0
    g: 0
    b: 0
    preLoderSkinPath: 
    effectSkinPath: 
  ADOption 0:
    name: 中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文
    enable: 0
    fileType: 0
    imageInfo: i
    textContent: 
    videpPath: 
    size: 0
    typeName: 
    textR: 0
    textG: 0
    textB: 0
    caption: 
    position: 0
    duration: 0
    clickURL: 
    clickTarget: ttttttttttttttttttttttttttttttt
    imageX: 123456789
    imageY: 
    imageWidth: 
    imageHeight: 
    fontX: 
    fontY: 
    fontWidth: 
    fontHeight: 
  $ kelprofile show data/profile/over-long.xml
  == data/profile/over-long.xml (conversion profiles)
  fileName: over-long.xml
  name: 中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中中
  langCount: 10
  language 0:
    lang: l0
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 1:
    lang: l1
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 2:
    lang: l2
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 3:
    lang: l3
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 4:
    lang: l4
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 5:
    lang: l5
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 6:
    lang: l6
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 7:
    lang: l7
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 8:
    lang: l8
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  language 9:
    lang: l9
    displayName: (null)
    desc: t
    groupDisplayName: (null)
  format: 
  extName: 
  isSysProfile: 0
  type: 0
  device: 0
  groupId: 0
  configItem 0:
    name: 
    group: 
    readyOnly: 0
    displayType: 0 ()
    valueType: 0 ()
    label 0: (null)
    label 1: (null)
    label 2: (null)
    label 3: (null)
    label 4: (null)
    label 5: (null)
    label 6: (null)
    label 7: (null)
    label 8: (null)
    label 9: (null)
    description 0: (null)
    description 1: (null)
    description 2: (null)
    description 3: (null)
    description 4: (null)
    description 5: (null)
    description 6: (null)
    description 7: (null)
    description 8: (null)
    description 9: (null)
    listEntry 0:
      value: vvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvv
      label 0: kept
      label 1: (null)
      label 2: (null)
      label 3: (null)
      label 4: (null)
      label 5: (null)
      label 6: (null)
      label 7: (null)
      label 8: (null)
      label 9: (null)
    defaultValue: 
  $ kelprofile show data/groups/items.xml data/groups/over-long.xml
  == data/groups/items.xml (option groups)
  optionItem 0:
    name: video
    readyOnly: 1
    displayType: 20 (list)
    description: 中文
    childOptionItem 0:
      name: codec
      readyOnly: 1
      displayType: 24 (chooseColor)
      valueType: 3 (double)
      values: h264,hevc
      defaultValue: h264
      description: 中文
    childOptionItem 1:
      name: rate
      readyOnly: 0
      displayType: 21 (input)
      valueType: 0 ()
      values: (null)
      defaultValue: (null)
      description: (null)
  optionItem 1:
    name: empty
    readyOnly: 0
    displayType: 0 ()
    description: (null)
  optionItem 2:
    name: 
    readyOnly: 0
    displayType: 0 ()
    description: 馃榾
  == data/groups/over-long.xml (option groups)
  optionItem 0:
    name: nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn
    readyOnly: 0
    displayType: 0 ()
    description: (null)
    childOptionItem 0:
      name: 😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀
      readyOnly: 0
      displayType: 0 ()
      valueType: 0 ()
      values: 馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾馃榾
      defaultValue: (null)
      description: (null)
  $ kelprofile show data/webplayer/over-long.xml
  == data/webplayer/over-long.xml (web-player projects)
  playskin: 
  playerBG: 0
  publishXmlIsOut: 0
  misc: a中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文
  publishDomain: (null)
  publishPath: (null)
  optionFileName: 
  option: a中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文
  addOnCount: 120
  addOn 0: h0
  addOn 1: h1
  addOn 2: h2
  addOn 3: h3
  addOn 4: h4
  addOn 5: h5
  addOn 6: h6
  addOn 7: h7
  addOn 8: h8
  addOn 9: h9
  addOn 10: h10
  addOn 11: h11
  addOn 12: h12
  addOn 13: h13
  addOn 14: h14
  addOn 15: h15
  addOn 16: h16
  addOn 17: h17
  addOn 18: h18
  addOn 19: h19
  addOn 20: h20
  addOn 21: h21
  addOn 22: h22
  addOn 23: h23
  addOn 24: h24
  addOn 25: h25
  addOn 26: h26
  addOn 27: h27
  addOn 28: h28
  addOn 29: h29
  addOn 30: h30
  addOn 31: h31
  addOn 32: h32
  addOn 33: h33
  addOn 34: h34
  addOn 35: h35
  addOn 36: h36
  addOn 37: h37
  addOn 38: h38
  addOn 39: h39
  addOn 40: h40
  addOn 41: h41
  addOn 42: h42
  addOn 43: h43
  addOn 44: h44
  addOn 45: h45
  addOn 46: h46
  addOn 47: h47
  addOn 48: h48
  addOn 49: h49
  addOn 50: h50
  addOn 51: h51
  addOn 52: h52
  addOn 53: h53
  addOn 54: h54
  addOn 55: h55
  addOn 56: h56
  addOn 57: h57
  addOn 58: h58
  addOn 59: h59
  addOn 60: h60
  addOn 61: h61
  addOn 62: h62
  addOn 63: h63
  addOn 64: h64
  addOn 65: h65
  addOn 66: h66
  addOn 67: h67
  addOn 68: h68
  addOn 69: h69
  addOn 70: h70
  addOn 71: h71
  addOn 72: h72
  addOn 73: h73
  addOn 74: h74
  addOn 75: h75
  addOn 76: h76
  addOn 77: h77
  addOn 78: h78
  addOn 79: h79
  addOn 80: h80
  addOn 81: h81
  addOn 82: h82
  addOn 83: h83
  addOn 84: h84
  addOn 85: h85
  addOn 86: h86
  addOn 87: h87
  addOn 88: h88
  addOn 89: h89
  addOn 90: h90
  addOn 91: h91
  addOn 92: h92
  addOn 93: h93
  addOn 94: h94
  addOn 95: h95
  addOn 96: h96
  addOn 97: h97
  addOn 98: h98
  addOn 99: h99
  addOn 100: h100
  addOn 101: h101
  addOn 102: h102
  addOn 103: h103
  addOn 104: h104
  addOn 105: h105
  addOn 106: h106
  addOn 107: h107
  addOn 108: h108
  addOn 109: h109
  addOn 110: h110
  addOn 111: h111
  addOn 112: h112
  addOn 113: h113
  addOn 114: h114
  addOn 115: h115
  addOn 116: h116
  addOn 117: h117
  addOn 118: h118
  addOn 119: h119
  playItem 0:
    caption: a中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文中文
    path: 
    image: 
    clickurl: 
    clicktarget: 
    endurl: 
    styleoftarget: 
    endtarget: 
    options: 
    advert 0:
      videotype: a中文中文中文中文中文
      filepath: 
      caption: 
      position: 
      duration: 
      clickurl: 
      clicktarget: 
      sound: 0
      fadein: 0
      fadeout: 0
      options: 
