#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class ChooseBlock(object): 
    def __init__(self,block=None): 
## GUI initialization 
        
        self.VariableComClass=r'ProcessExecutive.Variables'
        self.exvardb = win32com.client.Dispatch(self.VariableComClass)
## Process Block Initialization 
        self.EXEC_MODE_NORMAL = 0
        self.EXEC_MODE_UNDO = 1
        self.EXEC_MODE_AUTO = 2
        self.InitVariables()
        self.api = win32com.client.Dispatch('ProcessExecutive.ProcessExecutiveApi')
        if(self.api != None):
            self.ExecutionMode = self.api.getExecutionType()
        else:
             self.ExecutionMode = self.EXEC_MODE_NORMAL
## End of Initialization
    def ShowDialog(self):
        pass
        return
        
    def HideDialog(self):
        pass
        return
        
    def CreateGui(self):
        pass
        
    def CreateModalGui(self):
        pass
        
    def CloseDialog(self):
        pass
        
## Default Process Block methods 
    def Execute(self):
        self.ExecuteBlock()
        return
        
    def Undo(self):
        self.UndoBlock()
        return
        
    def CanUndo(self):
        return 1
        
    def CanSkip(self):
        return 1
        
    def ExecuteBlock(self):
        return
       
    def UndoBlock(self):
        return
        
    def DrawWindow(self, window, model):
        return
        
    def PlayMacro(self):
        return
        
    def IsValidState(self):
        return 1 
        
    def InitVariables(self):
        import Kelso         
        self.Table =  r"profiles.csv"  
        self.First =  r"IPE 160"  
        self.Profile =  r""  
        self.Trial =  0  
        self.Mass =  0.00  
        self.Inertia =  0.00  
        self.Modulus =  0.00  
        return
    def getTable(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Table') == 0):
            returnValue = self.exvardb.getFileVarValue(r'Table')
        else:
            returnValue= self.Table 
        return str (returnValue)    
     

    def setTable(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'Table') == 0):
            self.exvardb.setFileVarValue(r'Table', str (newVal) )
            self.Table= str (newVal) 
        else:
            self.Table= str (newVal) 
     

    def getFirst(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'First') == 0):
            returnValue = self.exvardb.getStringVarValue(r'First')
        else:
            returnValue= self.First 
        return str (returnValue)    
     

    def setFirst(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'First') == 0):
            self.exvardb.setStringVarValue(r'First', str (newVal) )
            self.First= str (newVal) 
        else:
            self.First= str (newVal) 
     

    def getProfile(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Profile') == 0):
            returnValue = self.exvardb.getStringVarValue(r'Profile')
        else:
            returnValue= self.Profile 
        return str (returnValue)    
     

    def setProfile(self, newVal ):        
        if(self.exvardb.checkProcessVariable(r'Profile') == 0):
            self.exvardb.setStringVarValue(r'Profile', str (newVal) )
            self.Profile= str (newVal) 
        else:
            self.Profile= str (newVal) 
     

    def getTrial(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Trial') == 0):
            returnValue = self.exvardb.getIntVarValue(r'Trial')
        else:
            returnValue=self.Trial 
        return returnValue    
     

    def setTrial(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Trial') == 0):
            self.exvardb.setIntVarValue(r'Trial', newVal )
            self.Trial=newVal 
        else:
            self.Trial=newVal 
     

    def getMass(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Mass') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Mass')
        else:
            returnValue=self.Mass 
        return returnValue    
     

    def setMass(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Mass') == 0):
            self.exvardb.setDoubleVarValue(r'Mass', newVal )
            self.Mass=newVal 
        else:
            self.Mass=newVal 
     

    def getInertia(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Inertia') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Inertia')
        else:
            returnValue=self.Inertia 
        return returnValue    
     

    def setInertia(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Inertia') == 0):
            self.exvardb.setDoubleVarValue(r'Inertia', newVal )
            self.Inertia=newVal 
        else:
            self.Inertia=newVal 
     

    def getModulus(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Modulus') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Modulus')
        else:
            returnValue=self.Modulus 
        return returnValue    
     

    def setModulus(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Modulus') == 0):
            self.exvardb.setDoubleVarValue(r'Modulus', newVal )
            self.Modulus=newVal 
        else:
            self.Modulus=newVal 
     

    def GetVariables(self):
        self.Table = self.getTable()
        self.First = self.getFirst()
        self.Profile = self.getProfile()
        self.Trial = self.getTrial()
        self.Mass = self.getMass()
        self.Inertia = self.getInertia()
        self.Modulus = self.getModulus()
        return
    def UpdateVariables(self):
        self.setTable(self.Table)
        self.setFirst(self.First)
        self.setProfile(self.Profile)
        self.setTrial(self.Trial)
        self.setMass(self.Mass)
        self.setInertia(self.Inertia)
        self.setModulus(self.Modulus)
        return
