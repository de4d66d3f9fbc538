-- The tables and indexes of the vaccine-management database on PostgreSQL.
--
-- Texts sort by their bytes. Every column may be Null, and no key is unique: a row
-- that is there twice is something rules report (see postgresql_strict.sql for the
-- unique indexes that may be added). The indexes stand on the very expressions that
-- the operations filter by, made of the engine's own functions, so that any client of
-- the engine can write; bpchar is the type whose comparisons do not count trailing
-- blanks.

CREATE TABLE IF NOT EXISTS provider (
  "pin" text COLLATE "C",
  "contact" text COLLATE "C",
  "lastname" text COLLATE "C",
  "address" text COLLATE "C",
  "addres2" text COLLATE "C",
  "city" text COLLATE "C",
  "state" text COLLATE "C",
  "zipcode" text COLLATE "C",
  "ml_contact" text COLLATE "C",
  "ml_address" text COLLATE "C",
  "ml_addres2" text COLLATE "C",
  "ml_city" text COLLATE "C",
  "ml_state" text COLLATE "C",
  "ml_zipcode" text COLLATE "C",
  "note" text COLLATE "C",
  "phone" text COLLATE "C",
  "fax" text COLLATE "C",
  "codes" text COLLATE "C",
  "phone2" text COLLATE "C",
  "fax2" text COLLATE "C",
  "createdate" date,
  "county" text COLLATE "C",
  "provid" bigint,
  "sector" numeric,
  "datevfc" date,
  "extension" text COLLATE "C",
  "firstname" text COLLATE "C",
  "initial" text COLLATE "C",
  "title" text COLLATE "C",
  "linkpin" text COLLATE "C",
  "alphaid" text COLLATE "C",
  "active" text COLLATE "C",
  "subdiv" text COLLATE "C",
  "cat1" text COLLATE "C",
  "cat2" text COLLATE "C",
  "cat3" text COLLATE "C",
  "cat4" text COLLATE "C",
  "chgdate" date,
  "userid" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS enroll (
  "pin" text COLLATE "C",
  "ensource" text COLLATE "C",
  "chgdate" date,
  "userid" text COLLATE "C",
  "allkids1" bigint DEFAULT 0,
  "medicaid1" bigint DEFAULT 0,
  "uninsured1" bigint DEFAULT 0,
  "amindian1" bigint DEFAULT 0,
  "fqhc_rhc1" bigint DEFAULT 0,
  "vfckids1" bigint DEFAULT 0,
  "g317kids1" bigint DEFAULT 0,
  "statekids1" bigint DEFAULT 0,
  "other1" bigint DEFAULT 0,
  "allkids2" bigint DEFAULT 0,
  "medicaid2" bigint DEFAULT 0,
  "uninsured2" bigint DEFAULT 0,
  "amindian2" bigint DEFAULT 0,
  "fqhc_rhc2" bigint DEFAULT 0,
  "vfckids2" bigint DEFAULT 0,
  "g317kids2" bigint DEFAULT 0,
  "statekids2" bigint DEFAULT 0,
  "other2" bigint DEFAULT 0,
  "allkids3" bigint DEFAULT 0,
  "medicaid3" bigint DEFAULT 0,
  "uninsured3" bigint DEFAULT 0,
  "amindian3" bigint DEFAULT 0,
  "fqhc_rhc3" bigint DEFAULT 0,
  "vfckids3" bigint DEFAULT 0,
  "g317kids3" bigint DEFAULT 0,
  "statekids3" bigint DEFAULT 0,
  "other3" bigint DEFAULT 0,
  "allkids4" bigint DEFAULT 0,
  "medicaid4" bigint DEFAULT 0,
  "uninsured4" bigint DEFAULT 0,
  "amindian4" bigint DEFAULT 0,
  "fqhc_rhc4" bigint DEFAULT 0,
  "vfckids4" bigint DEFAULT 0,
  "g317kids4" bigint DEFAULT 0,
  "statekids4" bigint DEFAULT 0,
  "other4" bigint DEFAULT 0
);

CREATE TABLE IF NOT EXISTS physicn (
  "pin" text COLLATE "C",
  "lastname" text COLLATE "C",
  "firstname" text COLLATE "C",
  "initial" text COLLATE "C",
  "title" text COLLATE "C",
  "other1" text COLLATE "C",
  "medicaidno" text COLLATE "C",
  "medlicense" text COLLATE "C",
  "chgdate" date
);

CREATE TABLE IF NOT EXISTS neworder (
  "ordpin" text COLLATE "C",
  "rectype" text COLLATE "C",
  "pin" text COLLATE "C",
  "orddate" date,
  "vaccine" text COLLATE "C",
  "orddose" bigint DEFAULT 0,
  "fcode1" text COLLATE "C",
  "fdose1" bigint DEFAULT 0,
  "size" bigint DEFAULT 0,
  "cost" double precision,
  "maker" text COLLATE "C",
  "contract" text COLLATE "C",
  "ndcno" text COLLATE "C",
  "chgdate" date,
  "userid" text COLLATE "C",
  "descrip" text COLLATE "C",
  "seekid" bigint DEFAULT 0
);

CREATE TABLE IF NOT EXISTS influenza (
  "ordpin" text COLLATE "C",
  "rectype" text COLLATE "C",
  "pin" text COLLATE "C",
  "orddate" date,
  "vaccine" text COLLATE "C",
  "orddose" bigint DEFAULT 0,
  "fcode1" text COLLATE "C",
  "fdose1" bigint DEFAULT 0,
  "size" bigint DEFAULT 0,
  "cost" double precision,
  "maker" text COLLATE "C",
  "contract" text COLLATE "C",
  "ndcno" text COLLATE "C",
  "chgdate" date,
  "userid" text COLLATE "C",
  "descrip" text COLLATE "C",
  "seekid" bigint DEFAULT 0
);

CREATE TABLE IF NOT EXISTS distrib (
  "input" date,
  "dateout" date,
  "frompin" text COLLATE "C",
  "pin" text COLLATE "C",
  "vaccine" text COLLATE "C",
  "lot" text COLLATE "C",
  "doses" bigint DEFAULT 0,
  "units" bigint DEFAULT 0,
  "fdose1" bigint DEFAULT 0,
  "action" numeric,
  "distid" bigint,
  "notes" text COLLATE "C",
  "chgdate" date,
  "status" text COLLATE "C",
  "shipped" bigint DEFAULT 0,
  "userid" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS provhas (
  "pin" text COLLATE "C",
  "vaccine" text COLLATE "C",
  "doses" bigint DEFAULT 0,
  "chgdate" date,
  "idate" date,
  "provhasid" bigint,
  "userid" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS dosesadm (
  "adate" date,
  "pin" text COLLATE "C",
  "sector" numeric,
  "vaccine" text COLLATE "C",
  "position" bigint DEFAULT 0,
  "dose" numeric,
  "g1" bigint DEFAULT 0,
  "g2" bigint DEFAULT 0,
  "g3" bigint DEFAULT 0,
  "g4" bigint DEFAULT 0,
  "g5" bigint DEFAULT 0,
  "g6" bigint DEFAULT 0,
  "g7" bigint DEFAULT 0,
  "g8" bigint DEFAULT 0,
  "g9" bigint DEFAULT 0,
  "g10" bigint DEFAULT 0,
  "g11" bigint DEFAULT 0,
  "g12" bigint DEFAULT 0,
  "g13" bigint DEFAULT 0,
  "rowtot" bigint DEFAULT 0,
  "dauzr1" bigint DEFAULT 0,
  "dauzr2" bigint DEFAULT 0,
  "dauzr3" bigint DEFAULT 0,
  "dauzr4" bigint DEFAULT 0,
  "dauzr5" bigint DEFAULT 0,
  "dauzr6" bigint DEFAULT 0,
  "dauzr7" bigint DEFAULT 0,
  "dauzr8" bigint DEFAULT 0,
  "dauzrtot" bigint DEFAULT 0,
  "chgdate" date,
  "userid" text COLLATE "C",
  "dosesadmid" bigint
);

CREATE TABLE IF NOT EXISTS stock (
  "pin" text COLLATE "C",
  "datein" date,
  "doses" bigint DEFAULT 0,
  "lot" text COLLATE "C",
  "vaccine" text COLLATE "C",
  "maker" text COLLATE "C",
  "expiry" date,
  "tracking" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS lots (
  "vaccine" text COLLATE "C",
  "lot" text COLLATE "C",
  "expiry" date,
  "maker" text COLLATE "C",
  "remain" bigint DEFAULT 0,
  "size" bigint DEFAULT 0,
  "pin" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS pvaccref (
  "vaccine" text COLLATE "C",
  "maker" text COLLATE "C",
  "begin" date,
  "end" date,
  "minbulk" bigint,
  "unitsize" bigint,
  "pkgsize" bigint,
  "ndcno" text COLLATE "C",
  "cost" double precision,
  "contractid" text COLLATE "C",
  "sel_maker" text COLLATE "C",
  "dos_wind" text COLLATE "C",
  "excfunds" text COLLATE "C",
  "descrip" text COLLATE "C",
  "locactiv" boolean,
  "maxno" bigint
);

CREATE TABLE IF NOT EXISTS vaccref (
  "vaccine" text COLLATE "C",
  "maxno" bigint,
  "locactiv" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS funding (
  "fundcode" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS actref (
  "status" text COLLATE "C",
  "action" numeric
);

CREATE TABLE IF NOT EXISTS sectoref (
  "sector" numeric
);

CREATE TABLE IF NOT EXISTS subdiv (
  "subdiv" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS zipcodes (
  "zip" text COLLATE "C",
  "cntyname" text COLLATE "C"
);

CREATE TABLE IF NOT EXISTS nextid (
  "ctablename" text COLLATE "C",
  "inextid" bigint
);

CREATE INDEX IF NOT EXISTS provider_by_pin ON provider (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  sector
);
CREATE INDEX IF NOT EXISTS enroll_by_pin ON enroll (
  (CAST(ltrim(rtrim(pin)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS physicn_by_pin ON physicn (
  (CAST(pin AS bpchar))
);
CREATE INDEX IF NOT EXISTS neworder_by_order ON neworder (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  orddate,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  (CAST(ltrim(rtrim(fcode1)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS influenza_by_order ON influenza (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  orddate,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  (CAST(ltrim(rtrim(fcode1)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS distrib_by_shipment ON distrib (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  dateout,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS dosesadm_by_report ON dosesadm (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  adate,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS dosesadm_by_pin ON dosesadm (
  (CAST(pin AS bpchar)),
  adate
);
CREATE INDEX IF NOT EXISTS stock_by_pin ON stock (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  datein DESC NULLS LAST
);
CREATE INDEX IF NOT EXISTS stock_by_vaccine ON stock (
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  datein DESC NULLS LAST
);
CREATE INDEX IF NOT EXISTS stock_by_pin_and_vaccine ON stock (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  datein DESC NULLS LAST
);
CREATE INDEX IF NOT EXISTS stock_by_lot ON stock (
  (CAST(ltrim(rtrim(replace(lot, ltrim(rtrim('-')), ''))) AS bpchar)),
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  datein DESC NULLS LAST
);
CREATE INDEX IF NOT EXISTS stock_by_datein ON stock (
  datein DESC NULLS LAST
);
CREATE INDEX IF NOT EXISTS lots_by_pin ON lots (
  (CAST(ltrim(rtrim(pin)) AS bpchar)),
  (CAST(ltrim(rtrim(vaccine)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS pvaccref_by_vaccine ON pvaccref (
  (CAST(ltrim(rtrim(vaccine)) AS bpchar)),
  pkgsize
);
CREATE INDEX IF NOT EXISTS pvaccref_by_locactiv ON pvaccref (
  locactiv,
  (CAST(ltrim(rtrim(vaccine)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS vaccref_by_vaccine ON vaccref (
  (CAST(ltrim(rtrim(vaccine)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS funding_by_fundcode ON funding (
  (CAST(ltrim(rtrim(fundcode)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS actref_by_trimmed ON actref (
  (CAST(ltrim(rtrim(status)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS actref_by_status ON actref (
  (CAST(status AS bpchar))
);
CREATE INDEX IF NOT EXISTS sectoref_by_sector ON sectoref (
  sector
);
CREATE INDEX IF NOT EXISTS subdiv_by_subdiv ON subdiv (
  (CAST(ltrim(rtrim(subdiv)) AS bpchar))
);
CREATE INDEX IF NOT EXISTS zipcodes_by_zip ON zipcodes (
  (CAST(zip AS bpchar))
);
CREATE INDEX IF NOT EXISTS nextid_by_ctablename ON nextid (
  (CAST(ltrim(rtrim(upper(ctablename))) AS bpchar))
);
