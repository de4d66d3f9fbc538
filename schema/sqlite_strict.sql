-- Unique indexes that a database may have besides, on SQLite.
--
-- Each stands on what a duplicate check counts by before a row is inserted, and on no
-- more rows than that check guards: a row that one client alone may add must not be
-- refused.

-- Depots and others may share a PIN with a provider.
CREATE UNIQUE INDEX IF NOT EXISTS provider_unique_pin ON provider (
  ltrim(rtrim(pin)) COLLATE RTRIM
) WHERE sector BETWEEN 10 AND 29;

-- The check finds no PIN that is stored with blanks in front.
CREATE UNIQUE INDEX IF NOT EXISTS enroll_unique_pin ON enroll (
  ltrim(rtrim(pin)) COLLATE RTRIM
) WHERE pin = ltrim(pin);

-- Orders that come from a depot's shipment have no ordpin, and nothing checks them.
CREATE UNIQUE INDEX IF NOT EXISTS neworder_unique_open_order ON neworder (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  orddate,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  ltrim(rtrim(fcode1)) COLLATE RTRIM
) WHERE seekid = 0 AND ordpin IS NOT NULL;

-- Distributions themselves, which are action 1, are written by others.
CREATE UNIQUE INDEX IF NOT EXISTS distrib_unique_adjustment ON distrib (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  dateout,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  ltrim(rtrim(replace(lot, ltrim(rtrim('-')), ''))) COLLATE RTRIM,
  ltrim(rtrim(frompin)) COLLATE RTRIM,
  action
) WHERE action <> 1;

CREATE UNIQUE INDEX IF NOT EXISTS dosesadm_unique_report ON dosesadm (
  ltrim(rtrim(pin)) COLLATE RTRIM,
  adate,
  ltrim(rtrim(vaccine)) COLLATE RTRIM,
  dose,
  sector
);
