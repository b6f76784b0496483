#include "CorvaneBrell/SampleMac/SampleTaskDump.h"

// The system's sections first, then the user's. Paths in the home stand as /Users/ and the user's number.
const std::string_view brell::sampleTaskDump = R"dump(========================
 Records for UID -2 : FFFFEEEE-DDDD-CCCC-BBBB-AAAAFFFFFFFE
========================

 ServiceManagement migrated: true
 LaunchServices registered: true

 Items:

 #1:
                 UUID: B7E50001-0C1D-4E2F-8A3B-0000005A3D01
                 Name: Halverson Instruments
       Developer Name: Halverson Instruments
      Team Identifier: 7HALVERS0N
                 Type: developer (0x20)
                Flags: [  ] (0)
          Disposition: [disabled, allowed, not notified] (0x2)
           Identifier: Halverson Instruments
                  URL: (null)
           Generation: 1
  Embedded Item Identifiers:
    #1: 16.com.halverson.duskwatchd
    #2: 8.com.halverson.duskwatch.menu

 #2:
                 UUID: B7E50002-0C1D-4E2F-8A3B-0000005A3D02
                 Name: duskwatchd
       Developer Name: Halverson Instruments
      Team Identifier: 7HALVERS0N
                 Type: legacy daemon (0x10010)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 16.com.halverson.duskwatchd
                  URL: file:///Library/LaunchDaemons/com.halverson.duskwatchd.plist
      Executable Path: /Library/Application Support/Duskwatch/duskwatchd
           Generation: 1
    Parent Identifier: Halverson Instruments

 #3:
                 UUID: B7E50003-0C1D-4E2F-8A3B-0000005A3D03
                 Name: menu
       Developer Name: Halverson Instruments
      Team Identifier: 7HALVERS0N
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, disallowed, notified] (0x9)
           Identifier: 8.com.halverson.duskwatch.menu
                  URL: /Library/LaunchAgents/com.halverson.duskwatch.menu.plist
      Executable Path: /Applications/Duskwatch.app/Contents/MacOS/menu
           Generation: 1
    Parent Identifier: Halverson Instruments

 #4:
                 UUID: B7E50004-0C1D-4E2F-8A3B-0000005A3D04
                 Name: guardd
       Developer Name: Guard: Endpoint Tools
      Team Identifier: 6GUARD00TL
                 Type: legacy daemon (0x10010)
                Flags: [ legacy ] (0x1)
          Disposition: [disabled, allowed, not notified] (0x2)
           Identifier: 16.com.malwarebytes.guard
                  URL: /Library/LaunchDaemons/com.malwarebytes.guard.plist
      Executable Path: /Library/Application Support/Guard/guardd
           Generation: 1

========================
 Records for UID 0 : AAAABBBB-CCCC-DDDD-EEEE-000000000000
========================

 ServiceManagement migrated: true
 LaunchServices registered: true

 Items:

 #1:
                 UUID: B7E50005-0C1D-4E2F-8A3B-0000005A3D05
                 Name: Printer Setup Helper
       Developer Name: Ashgrove Print GmbH
      Team Identifier: 4ASHGR0VEP
                 Type: legacy daemon (0x10010)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 16.com.ashgrove.print-setup
                  URL: file:///Library/LaunchDaemons/com.ashgrove.print%20setup.plist
      Executable Path: /Library/Printers/Ashgrove/setup
           Generation: 1

 #2:
                 UUID: B7E50006-0C1D-4E2F-8A3B-0000005A3D06
                 Name: Brell Helper
       Developer Name: Corvane
      Team Identifier: 5C0RVANE00
                 Type: legacy daemon (0x10010)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 16.com.corvane.brell.helper
                  URL: file:///Library/LaunchDaemons/com.corvane.brell.helper.plist
      Executable Path: /Library/PrivilegedHelperTools/com.corvane.brell.helper
           Generation: 1

 #3:
                 UUID: B7E50007-0C1D-4E2F-8A3B-0000005A3D07
                 Name: softwareupdated
       Developer Name: (null)
                 Type: curated daemon (0x90010)
                Flags: [ legacy, curated ] (0x9)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 16.com.apple.softwareupdated
                  URL: file:///System/Library/LaunchDaemons/com.apple.softwareupdated.plist
           Generation: 1

========================
 Records for UID 501 : 1F2E3D4C-5B6A-4798-8899-AABBCCDDEEFF
========================

 ServiceManagement migrated: true
 LaunchServices registered: true

 Items:

 #1:
                 UUID: B7E50008-0C1D-4E2F-8A3B-0000005A3D08
                 Name: Google Updater
       Developer Name: Google LLC
      Team Identifier: EQHXZ8M8AV
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 8.com.google.keystone.agent
                  URL: file:///Users/501/Library/LaunchAgents/com.google.keystone.agent.plist
      Executable Path: /Applications/Updates/Keystone.app/Contents/MacOS/agent
           Generation: 1
    Assoc. Bundle IDs: [ com.google.Chrome ]

 #2:
                 UUID: B7E50009-0C1D-4E2F-8A3B-0000005A3D09
                 Name: Lumenfold Sync
       Developer Name: Lumenfold
      Team Identifier: 9LUMENF0LD
                 Type: app (0x2)
                Flags: [  ] (0)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 2.com.lumenfold.app
                  URL: file:///Applications/Lumenfold%20Sync.app/
           Generation: 1
    Bundle Identifier: com.lumenfold.app
  Embedded Item Identifiers:
    #1: 8.com.lumenfold.sync
    #2: 4.com.lumenfold.helper

 #3:
                 UUID: B7E50010-0C1D-4E2F-8A3B-0000005A3D0A
                 Name: syncd
       Developer Name: Lumenfold
      Team Identifier: 9LUMENF0LD
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 8.com.lumenfold.sync
                  URL: /Users/501/Library/LaunchAgents/com.lumenfold.sync.plist
      Executable Path: /Applications/Lumenfold Sync.app/Contents/MacOS/syncd
           Generation: 1
    Parent Identifier: 2.com.lumenfold.app

 #4:
                 UUID: B7E50011-0C1D-4E2F-8A3B-0000005A3D0B
                 Name: Lumenfold Helper
       Developer Name: Lumenfold
      Team Identifier: 9LUMENF0LD
                 Type: login item (0x4)
                Flags: [  ] (0)
          Disposition: [enabled, disallowed, notified] (0x9)
           Identifier: 4.com.lumenfold.helper
                  URL: Contents/Library/LoginItems/Lumenfold%20Helper.app/
           Generation: 1
    Bundle Identifier: com.lumenfold.helper
    Parent Identifier: 2.com.lumenfold.app

 #5:
                 UUID: B7E50012-0C1D-4E2F-8A3B-0000005A3D0C
                 Name: zoom.us
       Developer Name: Zoom Video Communications, Inc.
      Team Identifier: BJ4HAAB9B3
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 8.us.zoom.updater
                  URL: file:///Users/501/Library/LaunchAgents/us.zoom.updater.plist
      Executable Path: /Applications/zoom.us.app/Contents/Library/updater
           Generation: 1

 #6:
                 UUID: B7E50013-0C1D-4E2F-8A3B-0000005A3D0D
                 Name: nameless
       Developer Name: (null)
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 8.untitled
                  URL: /Users/501/Library/LaunchAgents/untitled.plist
      Executable Path: /usr/local/bin/nameless
           Generation: 1

 #7:
                 UUID: B7E50014-0C1D-4E2F-8A3B-0000005A3D0E
                 Name: Redis: the server
       Developer Name: (null)
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 8.homebrew.mxcl.redis
                  URL: file:///Users/501/Library/LaunchAgents/homebrew.mxcl.redis.plist
      Executable Path: /opt/homebrew/opt/redis/bin/redis-server
           Generation: 1

 #8:
                 UUID: B7E50015-0C1D-4E2F-8A3B-0000005A3D0F
                 Name: Spotify
       Developer Name: Spotify AB
      Team Identifier: 2FNC3A47ZF
                 Type: legacy agent (0x10008)
                Flags: [ legacy ] (0x1)
          Disposition: [disabled, allowed, not notified] (0x2)
           Identifier: 8.com.spotify.client.startuphelper
                  URL: /Users/501/Library/LaunchAgents/com.spotify.client.startuphelper.plist
      Executable Path: /Applications/Spotify.app/Contents/MacOS/StartUpHelper
           Generation: 1

 #9:
                 UUID: B7E50016-0C1D-4E2F-8A3B-0000005A3D10
                 Name: Marginalia
       Developer Name: Ines Okonjo
      Team Identifier: 3INES0K0NJ
                 Type: login item (0x4)
                Flags: [  ] (0)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 4.app.marginalia.launcher
                  URL: file:///Applications/Marginalia%20%C3%A9dition.app/
           Generation: 1
    Bundle Identifier: app.marginalia.launcher

 #10:
                 UUID: B7E50017-0C1D-4E2F-8A3B-0000005A3D11
                 Name: Quick Notes
       Developer Name: (null)
                 Type: quicklook (0x40000)
                Flags: [  ] (0)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 32.org.fernwright.notes.preview
                  URL: (null)
           Generation: 1
    Bundle Identifier: org.fernwright.notes.preview

 #11:
                 UUID: B7E50018-0C1D-4E2F-8A3B-0000005A3D12
                 Name: Fernwright Importer
       Developer Name: (null)
                 Type: spotlight (0x80000)
                Flags: [  ] (0)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 64.org.fernwright.notes.importer
                  URL: (null)
           Generation: 1
    Bundle Identifier: org.fernwright.notes.importer

 #12:
                 UUID: B7E50019-0C1D-4E2F-8A3B-0000005A3D13
                 Name: Calendar Helper
       Developer Name: (null)
                 Type: login item (0x4)
                Flags: [  ] (0)
          Disposition: [enabled, allowed, notified] (0xb)
           Identifier: 4.com.apple.calendar.helper
                  URL: file:///System/Applications/Calendar.app/
           Generation: 1
    Bundle Identifier: com.apple.calendar.helper

)dump";
